#include <ostream>
#include <string>

#include "format_internal.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Format::Internal {

using MetaObj::Kind;
using MetaObj::MetaList;
using MetaObj::MetaObject;
using MetaObj::MetaStruct;

namespace {

constexpr int kStep = 3;

class SimplePrinter {
 public:
  SimplePrinter(Style const& style, Options const& options, bool tables, std::ostream& out)
      : style_(style), options_(options), tables_(tables), out_(out) {}

  void PrintRoot(MetaObject const& root) {
    if (root.GetKind() == Kind::Struct) return PrintRecord(static_cast<MetaStruct const&>(root), 0);
    if (root.GetKind() != Kind::List) return Line(0, ScalarText(&root));
    auto const& list = static_cast<MetaList const&>(root);
    if (IsStructList(list)) return PrintRecords(list, 0);
    for (auto const& item : list.GetItems()) Line(0, ScalarText(item.get()));
  }

 private:
  void Line(int indent, std::string const& text) {
    out_ << std::string(indent, ' ') << text << '\n';
  }

  // A record on its own: its heading when it has one, its fields below it.
  void PrintRecord(MetaStruct const& record, int indent) {
    auto const* header = style_.Header(record);
    if (header && !Style::IsNoHeader(*header)) {
      Line(indent, style_.ExpandHeader(*header, record));
      indent += kStep;
    }
    PrintFields(record, indent);
  }

  // The elements of a list of structures, a blank line between two.
  void PrintRecords(MetaList const& list, int indent) {
    bool first = true;
    for (auto const& item : list.GetItems()) {
      if (!first) out_ << '\n';
      first = false;
      if (item && item->GetKind() == Kind::Struct) {
        PrintRecord(static_cast<MetaStruct const&>(*item), indent);
      } else {
        Line(indent, ScalarText(item.get()));
      }
    }
  }

  void PrintFields(MetaStruct const& record, int indent) {
    for (auto const& [name, value] : style_.ShownFields(record)) {
      PrintField(record, name, value.get(), indent);
    }
  }

  void PrintField(MetaStruct const& owner, std::string const& name, MetaObject const* value,
                  int indent) {
    if (value && value->GetKind() == Kind::Struct) {
      auto const& record = static_cast<MetaStruct const&>(*value);
      auto const* header = style_.Header(record);
      if (header && Style::IsNoHeader(*header)) return PrintFields(record, indent);
      Line(indent, header ? style_.ExpandHeader(*header, record) : name + ":");
      return PrintFields(record, indent + kStep);
    }
    if (value && value->GetKind() == Kind::List) {
      auto const& list = static_cast<MetaList const&>(*value);
      if (IsStructList(list)) {
        Line(indent, name + ":");
        if (tables_) return WriteTable(list, style_, options_, indent + kStep, false, out_);
        return PrintRecords(list, indent + kStep);
      }
    }
    Line(indent, name + ": " + style_.FieldText(owner, name, value));
  }

  Style const& style_;
  Options const& options_;
  bool const tables_;
  std::ostream& out_;
};

}  // namespace

void PrintSimple(MetaObject const& root, Style const& style, Options const& options, bool tables,
                 std::ostream& out) {
  SimplePrinter(style, options, tables, out).PrintRoot(root);
}

}  // namespace Toolbase::Format::Internal
