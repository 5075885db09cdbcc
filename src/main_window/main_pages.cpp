// Layout of the pages.
#include "main_window/main_pages.h"

#include <algorithm>
#include <string>
#include <utility>

namespace korvex::main_window {

using forms::Layout;

namespace {

// Into the frame of that title where the page has one.
void place(Layout group, std::vector<Layout>& groups) {
  const auto same = std::ranges::find(groups, group.title, &Layout::title);
  if (same == groups.end()) {
    groups.push_back(std::move(group));
  } else {
    for (Layout& part : group.parts) same->parts.push_back(std::move(part));
  }
}

}  // namespace

std::vector<forms::Tab> MainPages::tabs() {
  return {
      {"Security", "SECURITY", " Sets security features of Windows "},
      {"Win Tweaks", "WINTWEAKS", " Customize the Windows operating system "},
      {"Windows 9x", "WINDOWS9X", " Customize features specific to Win9x "},
      {"NT4/Win2K", "NT4WIN2K", " Customize features specific to NT4/Win2K "},
      {"MS Office", "MSOFFICE", " Customize MS Office applications "},
      {"Registry", "REGISTRY", " Work with the registry "},
      {"Options", "OPTIONS", " Set user options "},
  };
}

Layout MainPages::page(int index, const std::vector<std::unique_ptr<PageSection>>& sections) {
  const auto page = static_cast<engine::Page>(index + 1);
  std::vector<Layout> groups = controls_.groups(page);
  for (const auto& section : sections) {
    for (Layout& group : section->groups(page)) place(std::move(group), groups);
  }
  if (groups.empty()) {
    const std::string name = "lblEmptyPage" + std::to_string(index + 1);
    groups.push_back(Layout::of(form_.own<forms::Label>(name, "This page has no settings yet.")));
  }
  return Layout::column({Layout::flow(std::move(groups)), Layout::space()});
}

Layout MainPages::layout(forms::TabStrip& tabMain,
                         const std::vector<std::unique_ptr<PageSection>>& sections) {
  std::vector<Layout> parts;
  parts.reserve(kPageCount);
  for (int index = 0; index < kPageCount; ++index) parts.push_back(page(index, sections));
  return Layout::pages(tabMain, std::move(parts));
}

}  // namespace korvex::main_window
