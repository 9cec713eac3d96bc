#include "help.h"

#include <algorithm>
#include <ostream>
#include <sstream>
#include <string>
#include <vector>

#include "options.h"
#include "params.h"
#include "plugins.h"
#include "toolbase/auto_cli.h"
#include "toolbase/call_spec.h"

namespace Toolbase::Cli {
namespace {

constexpr size_t kWidth = 80;
constexpr size_t kLabelColumn = 24;

// Writes `text` from column `indent` on, wrapped at word boundaries to kWidth;
// embedded newlines start new lines.
void PrintWrapped(std::string_view text, size_t indent, size_t first_column, std::ostream& out) {
  size_t column = first_column;
  bool first_line = true;
  while (!text.empty() || first_line) {
    size_t const end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (!first_line) {
      out << '\n' << std::string(indent, ' ');
      column = indent;
    }
    first_line = false;
    bool line_start = true;
    while (true) {
      size_t const begin = line.find_first_not_of(" \t\r\v\f");
      if (begin == std::string_view::npos) break;
      line.remove_prefix(begin);
      std::string_view const word = line.substr(0, line.find_first_of(" \t\r\v\f"));
      line.remove_prefix(word.size());
      if (!line_start && column + 1 + word.size() > kWidth) {
        out << '\n' << std::string(indent, ' ');
        column = indent;
        line_start = true;
      }
      if (!line_start) {
        out << ' ';
        ++column;
      }
      out << word;
      column += word.size();
      line_start = false;
    }
  }
  out << '\n';
}

void PrintEntry(std::string_view label, std::string_view text, std::ostream& out) {
  std::string head = "  " + std::string(label);
  out << head;
  if (head.size() + 1 > kLabelColumn) {
    out << '\n' << std::string(kLabelColumn, ' ');
  } else {
    out << std::string(kLabelColumn - head.size(), ' ');
  }
  PrintWrapped(text, kLabelColumn, kLabelColumn, out);
}

}  // namespace

void PrintNamespaceHelp(AutoCli::NamespaceNode& node, std::ostream& out) {
  std::string path = node.GetPathString(' ');
  out << "Usage: toolbase [options] " << (path.empty() ? "" : path + " ")
      << "{namespace|cmd} [cmd options]\n";
  if (!node.GetDescription().empty()) {
    out << "\nDescription:\n  ";
    PrintWrapped(node.GetDescription(), 2, 2, out);
  }
  if (path.empty()) {
    out << "\nOptions:\n";
    auto label = [](char const* name, char const* value_name) {
      return std::string("--") + name + (value_name ? std::string("=<") + value_name + ">" : "");
    };
    for (auto const& plugin : LoadedPlugins()) {
      for (auto const& option : plugin.options) {
        PrintEntry(label(option.name, option.value_name), option.description, out);
      }
    }
    for (auto const& option : kFrameworkOptions) {
      PrintEntry(label(option.name, option.value_name), option.description, out);
    }
  }
  std::vector<std::shared_ptr<AutoCli::NamespaceNode>> namespaces;
  std::vector<std::shared_ptr<AutoCli::NamespaceNode>> commands;
  for (auto const& child : node.GetNamespaceNodes()) {
    (child->GetType() == AutoCli::NodeType::Command ? commands : namespaces).push_back(child);
  }
  auto by_name = [](auto const& a, auto const& b) { return a->GetName() < b->GetName(); };
  std::sort(namespaces.begin(), namespaces.end(), by_name);
  std::sort(commands.begin(), commands.end(), by_name);
  if (!namespaces.empty()) {
    out << "\nAvailable Namespaces:\n";
    for (auto const& child : namespaces) PrintEntry(child->GetName(), child->GetDescription(), out);
  }
  if (!commands.empty()) {
    out << "\nAvailable Commands:\n";
    for (auto const& child : commands) PrintEntry(child->GetName(), child->GetDescription(), out);
  }
}

void PrintCommandHelp(AutoCli::CommandSpec& command, std::ostream& out) {
  out << "Usage: toolbase [options] " << command.GetPathString(' ') << " [cmd options]\n";
  out << "\nDescription:\n";
  PrintEntry(command.GetName(), command.GetDescription(), out);
  auto spec = command.GetInputSpec();
  if (spec->GetParameters().empty()) return;
  out << "\nCmd options:\n";
  for (auto const& parameter : spec->GetParameters()) {
    std::string label;
    if (!parameter->GetShortName().empty()) label = "-" + parameter->GetShortName() + "|";
    label += "--" + parameter->GetName();
    if (char const* value = ValueWord(*parameter)) label += "=<" + std::string(value) + ">";
    if (parameter->GetType() == CallSpec::StringList) label += " (repeatable)";
    std::string text = ExpandDescription(*parameter);
    if (parameter->IsRequired()) text += " (required)";
    PrintEntry(label, text, out);
  }
}

}  // namespace Toolbase::Cli
