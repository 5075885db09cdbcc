// From a window to its page.
#include "qt/handbook.h"

#include <QApplication>
#include <QFile>
#include <algorithm>
#include <vector>

#include "qt/form_view.h"
#include "qt/text.h"

namespace korvex::qt {
namespace {

using forms::Control;
using forms::ControlKind;
using forms::Layout;
using Kind = forms::Layout::Kind;

constexpr const char* kHead =
    "<!-- Made by tools/handbook from the window itself; do not edit. -->\n";

// As a cell of a table: one line, and nothing that Markdown takes for its own.
std::string cell(const std::string& text) {
  std::string result;
  for (const char c : text) {
    if (c == '\r') continue;
    if (c == '|' || c == '<' || c == '>' || c == '*' || c == '_' || c == '\\') result += '\\';
    result += c == '\n' ? ' ' : c;
  }
  const std::size_t begin = result.find_first_not_of(' ');
  if (begin == std::string::npos) return "";
  return result.substr(begin, result.find_last_not_of(' ') - begin + 1);
}

bool isTold(const Control& control) {
  return control.kind() != ControlKind::Label && control.kind() != ControlKind::Frame &&
         control.kind() != ControlKind::TabStrip;
}

std::string row(const Control& control) {
  std::string name = control.accessibleName();
  if (name.empty()) name = control.name();
  std::string text = cell(control.ToolTipText.get());
  const std::string more = cell(control.WhatsThis.get());
  if (!more.empty()) text += (text.empty() ? "" : "<br>") + more;
  return "| " + cell(name) + " | `" + control.name() + "` | " + text + " |\n";
}

// The tables of a part: one for each titled group, and one for what stands outside of them.
class Tables {
 public:
  std::string of(const Layout& part) {
    walk(part);
    endTable();
    return text_;
  }

 private:
  void walk(const Layout& part) {
    if (part.kind == Kind::Group) startGroup(part);
    if (part.kind == Kind::Control && isTold(*part.control)) {
      if (rows_.empty()) rows_ = "| control | name | what it does |\n|---|---|---|\n";
      rows_ += row(*part.control);
    }
    for (const Layout& inner : part.parts) walk(inner);
    if (part.kind == Kind::Group) endTable();
  }
  void startGroup(const Layout& part) {
    endTable();
    const auto* frame = part.control;
    const std::string title =
        frame == nullptr ? part.title : forms::plainCaption(frame->Caption.get());
    if (!title.empty()) text_ += "\n### " + cell(title) + "\n";
  }
  void endTable() {
    if (!rows_.empty()) text_ += "\n" + rows_;
    rows_.clear();
  }

  std::string text_;
  std::string rows_;
};

const Layout* pagesOf(const Layout& part) {
  if (part.kind == Kind::Pages) return &part;
  for (const Layout& inner : part.parts) {
    if (const Layout* pages = pagesOf(inner)) return pages;
  }
  return nullptr;
}

Layout withoutPages(const Layout& part) {
  Layout result = part;
  result.parts.clear();
  for (const Layout& inner : part.parts) {
    if (inner.kind != Kind::Pages) result.parts.push_back(withoutPages(inner));
  }
  return result;
}

std::string pictureName(const forms::Form& form, std::size_t page) {
  return form.name() + (page == 0 ? "" : "-" + std::to_string(page)) + ".png";
}

std::string picture(const forms::Form& form, std::size_t page, const std::string& what) {
  return "\n![" + cell(what) + "](" + pictureName(form, page) + ")\n";
}

const forms::TabStrip& stripOf(const Layout& pages) {
  return dynamic_cast<const forms::TabStrip&>(*pages.control);
}

bool save(const QString& path, const std::string& text) {
  QFile file(path);
  return file.open(QIODevice::WriteOnly) &&
         file.write(text.data(), static_cast<qint64>(text.size())) ==
             static_cast<qint64>(text.size()) &&
         file.flush();
}

}  // namespace

std::string handbookPage(const forms::Form& form, const std::string& purpose) {
  std::string text = std::string(kHead) + "# " + form.name() + "\n\n" + purpose +
                     ". Its title is \"" + form.Caption.get() + "\".\n";
  const Layout* pages = pagesOf(form.layout);
  if (pages == nullptr) return text + picture(form, 0, purpose) + Tables().of(form.layout);
  const std::vector<forms::Tab>& tabs = stripOf(*pages).tabs();
  for (std::size_t i = 0; i < tabs.size(); ++i) {
    const std::string title = forms::plainCaption(tabs[i].caption);
    text += "\n## " + cell(title) + "\n" + picture(form, i + 1, title) +
            Tables().of(pages->parts.at(i));
  }
  const std::string buttons = Tables().of(withoutPages(form.layout));
  return buttons.empty() ? text : text + "\n## On every page\n" + buttons;
}

bool writeHandbookPage(FormView& view, const std::string& purpose, const QString& folder) {
  forms::Form& form = view.form();
  const QString page = folder + '/' + toQt(form.name()) + ".md";
  if (QFile::exists(page)) return true;
  const auto grab = [&](std::size_t number) {
    QApplication::processEvents();
    return view.grab().save(folder + '/' + toQt(pictureName(form, number)), "PNG");
  };
  bool saved = true;
  if (const Layout* pages = pagesOf(form.layout)) {
    auto& strip = dynamic_cast<forms::TabStrip&>(*pages->control);
    const int before = strip.SelectedItem;
    for (std::size_t i = 1; i <= strip.tabs().size(); ++i) {
      strip.SelectedItem = static_cast<int>(i);
      saved = grab(i) && saved;
    }
    strip.SelectedItem = before;
  } else {
    saved = grab(0);
  }
  return saved && save(page, handbookPage(form, purpose));
}

bool canBeUsed(const forms::Form& form) {
  std::vector<const Control*> others;
  for (const Control* control : form.controls()) {
    const auto* button = dynamic_cast<const forms::CommandButton*>(control);
    const bool closes = button != nullptr && button->role() == forms::CommandButton::Role::Cancel;
    if (isTold(*control) && !closes && control->Visible) others.push_back(control);
  }
  return others.empty() || std::any_of(others.begin(), others.end(),
                                       [](const Control* c) { return c->Enabled.get(); });
}

}  // namespace korvex::qt
