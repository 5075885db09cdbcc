// The program's icon, drawn in code.
#pragma once

#include <QIcon>

namespace korvex::qt {

QIcon programIcon();

}  // namespace korvex::qt
