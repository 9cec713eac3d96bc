#include "format.h"

#include <algorithm>
#include <ostream>
#include <stdexcept>

#include "format_internal.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Format {

std::vector<std::string> const& FormatterNames() {
  static std::vector<std::string> const names = {"csv", "json", "simple", "table", "xml"};
  return names;
}

bool IsFormatter(std::string const& name) {
  auto const& names = FormatterNames();
  return std::binary_search(names.begin(), names.end(), name);
}

void Print(std::string const& formatter, std::shared_ptr<MetaObj::MetaObject> const& root,
           Directives const& directives, Options const& options, std::ostream& out) {
  if (!IsFormatter(formatter)) throw std::invalid_argument("Unknown formatter: " + formatter);
  if (formatter == "json") return Internal::PrintJson(root.get(), out);
  if (formatter == "xml") return Internal::PrintXml(root.get(), out);
  if (!root) return;
  Internal::Style const style(directives);
  if (formatter == "csv") return Internal::PrintCsv(*root, out);
  if (formatter == "table") return Internal::PrintTable(*root, style, options, out);
  Internal::PrintSimple(*root, style, options, false, out);
}

bool IsDocumentFormatter(std::string const& formatter) {
  return formatter == "json" || formatter == "xml";
}

void PrintBatch(std::string const& formatter, std::vector<BatchEntry> const& entries,
                std::ostream& out) {
  if (formatter == "json") return Internal::PrintJsonBatch(entries, out);
  if (formatter == "xml") return Internal::PrintXmlBatch(entries, out);
  throw std::invalid_argument("Not a document formatter: " + formatter);
}

}  // namespace Toolbase::Format
