// Which folder stands where, and choosing another one.
#include "dialogs/office/office_folders.h"

#include <fmt/format.h>

#include "engine/at_once.h"
#include "engine/folder_choice.h"
#include "engine/office.h"
#include "foundation/error_handler.h"

namespace korvex::dialogs {

using engine::HKCU;
using forms::Layout;

namespace {

constexpr const char* kWord = "Microsoft Word";
constexpr const char* kExcel = "Microsoft Excel";
constexpr const char* kPowerPoint = "Microsoft PowerPoint";
constexpr std::int16_t kVersion2000 = 9;

}  // namespace

struct OfficeFolders::Row {
  const char* group;
  const char* name;     // "WordDocPath": of the controls, behind txt, lbl and cmd
  const char* caption;  // of the label
  const char* toolTip;
  std::string_view value;
  std::string_view failure;
  std::string_view title;  // of the picker
};

const std::vector<OfficeFolders::Row>& OfficeFolders::rows() {
  static const std::vector<Row> table{
      {kWord, "WordDocPath", "New documents:", "Where Word opens and saves first", "DOC-PATH",
       "The default document storage location cannot be changed at this time.",
       "Identify Word's new document storage folder"},
      {kWord, "WordAutoSave", "AutoSave:", "Where Word keeps what it saves by itself",
       "AUTOSAVE-PATH", "The AutoSave path cannot be changed at this time.",
       "Identify Word's AutoSave folder"},
      {kExcel, "ExcelAltStartup",
       "Alternate startup:", "Whose files Excel opens when it starts, besides XLStart",
       "AltStartup", "The alternate startup path cannot be changed at this time.",
       "Identify Excel's alternate startup folder"},
      {kExcel, "ExcelDocPath", "New documents:", "Where Excel opens and saves first", "DefaultPath",
       "The default document storage location cannot be changed at this time.",
       "Identify Excel's new document storage folder"},
      {kPowerPoint, "PPDefault", "Documents:", "Where PowerPoint opens and saves first", "Default",
       "The default document path cannot be changed at this time.",
       "Identify PowerPoint's default document folder"},
      {kPowerPoint, "PPMultimediaDir", "Multimedia:", "Where PowerPoint looks for sound and film",
       "MultimediaDir", "The default multimedia path cannot be changed at this time.",
       "Identify PowerPoint's default multimedia folder"},
      {kPowerPoint, "PPPictureDir", "Pictures:", "Where PowerPoint looks for pictures",
       "PictureDir", "The default picture path cannot be changed at this time.",
       "Identify PowerPoint's default picture folder"},
      {kPowerPoint, "PPTemplateDir", "Templates:", "Where PowerPoint looks for templates",
       "TemplateDir", "The default template path cannot be changed at this time.",
       "Identify PowerPoint's default template folder"},
  };
  return table;
}

OfficeFolders::OfficeFolders(forms::Form& form, const DialogParts& parts) : parts_(parts) {
  for (const Row& row : rows()) {
    const std::string name = row.name;
    auto& field = form.own<forms::TextBox>(
        "txt" + name, forms::TextBoxOptions{.widthInCharacters = 40, .readOnly = true});
    auto& label = form.own<forms::Label>("lbl" + name, row.caption, &field);
    auto& button = form.own<forms::CommandButton>("cmd" + name, "Browse...");
    field.ToolTipText = row.toolTip;
    label.ToolTipText = row.toolTip;
    button.ToolTipText = fmt::format("{}; written at once", row.title);
    button.AccessibleName = fmt::format("Browse: {}", row.title);
    folders_.push_back({&row, &field, &label, &button});
  }
  for (const Folder& folder : folders_) {
    folder.button->Click += [this, &folder] {
      foundation::guarded(parts_.session, "P_BrowseDialog",
                          [this, &folder] { P_BrowseDialog(folder); });
    };
  }
}

Layout OfficeFolders::layout(std::string_view group) const {
  std::vector<Layout> cells;
  for (const Folder& folder : folders_) {
    if (folder.row->group != group) continue;
    cells.push_back(Layout::of(*folder.label));
    cells.push_back(Layout::of(*folder.field));
    cells.push_back(Layout::of(*folder.button));
  }
  return Layout::grid(3, std::move(cells));
}

// PowerPoint 97 has a key for each folder, with the folder as its default value.
OfficeFolders::Place OfficeFolders::placeOf(const Row& row) const {
  foundation::Session& session = parts_.session;
  if (row.group == kWord) return {engine::officeKey(session, "Word\\Options"), row.value};
  if (row.group == kExcel) return {engine::excelOptionsKey(session), row.value};
  if (session.g_iOfficeVer >= kVersion2000) {
    return {engine::officeKey(session, "PowerPoint\\RecentFolderList"), row.value};
  }
  return {engine::officeKey(session, fmt::format("PowerPoint\\Recent Folder List\\{}", row.value)),
          ""};
}

void OfficeFolders::read() {
  for (const Folder& folder : folders_) show(folder);
}

void OfficeFolders::show(const Folder& folder) {
  const Place place = placeOf(*folder.row);
  std::string text;
  const platform::Status status =
      engine::storedText(parts_.session, HKCU, place.key, place.value, text);
  parts_.session.trace.dump("lRetVal&", status);
  folder.field->Text = status == platform::ERROR_SUCCESS
                           ? text
                           : fmt::format("({})", platform::describeStatus(status));
  folder.field->WhatsThis =
      place.value.empty()
          ? fmt::format("The default value of the key HKEY_CURRENT_USER\\{}.", place.key)
          : fmt::format("The value {} of the key HKEY_CURRENT_USER\\{}.", place.value, place.key);
}

void OfficeFolders::P_BrowseDialog(const Folder& folder) {
  parts_.session.trace.enter("[P_BrowseDialog]");
  const auto chosen = engine::chooseFolder(parts_.session, folder.row->title);
  if (!chosen) return;
  const Place place = placeOf(*folder.row);
  engine::changeOrTell(parts_.session, folder.row->failure, platform::kIconExclamation, [&] {
    return engine::putText(parts_.session, HKCU, place.key, place.value, *chosen);
  });
  show(folder);
}

}  // namespace korvex::dialogs
