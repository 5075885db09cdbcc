// The new version of a file of Wine's registry text.
#pragma once

#include <memory>

#include "platform/hives/hive_file.h"
#include "platform/wine/wine_text_tree.h"

namespace korvex::platform {

// The hive of a tree; whyReadOnly is what the file around it has to say.
std::unique_ptr<HiveFile> makeWineTextHive(std::shared_ptr<const WineTextTree> tree,
                                           std::string whyReadOnly);
std::unique_ptr<HiveEdit> startWineTextEdit(const WineTextTree& tree);

}  // namespace korvex::platform
