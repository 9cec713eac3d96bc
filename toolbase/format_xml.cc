#include <ostream>
#include <string>
#include <string_view>

#include "format_internal.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Format::Internal {

using MetaObj::Kind;
using MetaObj::MetaObject;

namespace {

constexpr char const* kReplacement = "\xEF\xBF\xBD";

// Length of the valid UTF-8 sequence for a character allowed in XML at the
// start of `text`, or 0.
std::size_t ValidSequence(std::string_view text) {
  auto const byte = [&text](std::size_t i) { return static_cast<unsigned char>(text[i]); };
  auto const lead = byte(0);
  std::size_t length = lead >= 0xC2 && lead <= 0xDF   ? 2
                       : lead >= 0xE0 && lead <= 0xEF ? 3
                       : lead >= 0xF0 && lead <= 0xF4 ? 4
                                                      : 0;
  if (length == 0 || text.size() < length) return 0;
  for (std::size_t i = 1; i < length; ++i) {
    if ((byte(i) & 0xC0) != 0x80) return 0;
  }
  auto const second = byte(1);
  if ((lead == 0xE0 && second < 0xA0) || (lead == 0xED && second > 0x9F) ||
      (lead == 0xF0 && second < 0x90) || (lead == 0xF4 && second > 0x8F)) {
    return 0;  // overlong, surrogate or beyond U+10FFFF
  }
  if (lead == 0xEF && second == 0xBF && byte(2) >= 0xBE) return 0;  // U+FFFE, U+FFFF
  return length;
}

// `text` as XML character data, or as an attribute value in double quotes.
// Characters XML cannot carry become U+FFFD.
std::string Escape(std::string_view text, bool attribute) {
  std::string escaped;
  for (std::size_t i = 0; i < text.size();) {
    auto const c = static_cast<unsigned char>(text[i]);
    if (c >= 0x80) {
      auto const length = ValidSequence(text.substr(i));
      escaped += length ? text.substr(i, length) : kReplacement;
      i += length ? length : 1;
      continue;
    }
    ++i;
    switch (c) {
      case '&':
        escaped += "&amp;";
        break;
      case '<':
        escaped += "&lt;";
        break;
      case '>':
        escaped += "&gt;";
        break;
      case '"':
        escaped += attribute ? "&quot;" : "\"";
        break;
      case '\r':
        escaped += "&#13;";
        break;
      case '\n':
        escaped += attribute ? "&#10;" : "\n";
        break;
      case '\t':
        escaped += attribute ? "&#9;" : "\t";
        break;
      default:
        escaped += c < 0x20 ? kReplacement : std::string(1, static_cast<char>(c));
    }
  }
  return escaped;
}

class XmlWriter {
 public:
  explicit XmlWriter(std::ostream& out) : out_(out) {}

  void Write(MetaObject const& value, int depth) {
    switch (value.GetKind()) {
      case Kind::Bool:
        return Scalar("boolean", value, depth);
      case Kind::Int:
        return Scalar("integer", value, depth);
      case Kind::String:
        return Scalar("string", value, depth);
      case Kind::Struct:
        return Struct(static_cast<MetaObj::MetaStruct const&>(value), depth);
      case Kind::List:
        return List(static_cast<MetaObj::MetaList const&>(value), depth);
    }
  }

 private:
  void Indent(int depth) { out_ << std::string(2 * depth, ' '); }

  void Scalar(char const* tag, MetaObject const& value, int depth) {
    Indent(depth);
    if (!value.HasValue()) {
      out_ << '<' << tag << "/>\n";
      return;
    }
    out_ << '<' << tag << '>' << Escape(ScalarText(&value), false) << "</" << tag << ">\n";
  }

  void Struct(MetaObj::MetaStruct const& record, int depth) {
    Indent(depth);
    out_ << "<structure typeName=\"" << Escape(record.GetTypeName(), true) << '"';
    if (record.GetFields().empty()) {
      out_ << "/>\n";
      return;
    }
    out_ << ">\n";
    for (auto const& [name, field] : record.GetFields()) {
      Indent(depth + 1);
      out_ << "<field name=\"" << Escape(name, true) << '"';
      if (!field) {
        out_ << "/>\n";
        continue;
      }
      out_ << ">\n";
      Write(*field, depth + 2);
      Indent(depth + 1);
      out_ << "</field>\n";
    }
    Indent(depth);
    out_ << "</structure>\n";
  }

  void List(MetaObj::MetaList const& list, int depth) {
    Indent(depth);
    out_ << "<list type=\"" << (IsStructList(list) ? "structure" : "string") << '"';
    if (list.GetItems().empty()) {
      out_ << "/>\n";
      return;
    }
    out_ << ">\n";
    for (auto const& item : list.GetItems()) {
      if (item) Write(*item, depth + 1);
    }
    Indent(depth);
    out_ << "</list>\n";
  }

  std::ostream& out_;
};

}  // namespace

void PrintXmlBatch(std::vector<BatchEntry> const& entries, std::ostream& out) {
  out << "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";
  if (entries.empty()) {
    out << "<batch/>\n";
    return;
  }
  out << "<batch>\n";
  for (auto const& entry : entries) {
    out << "  <line number=\"" << entry.line << "\" command=\"" << Escape(entry.command, true)
        << "\" status=\"" << entry.status << "\" applied=\""
        << (entry.applied ? "true" : "false") << "\"";
    if (!entry.result && entry.text.empty() && entry.messages.empty()) {
      out << "/>\n";
      continue;
    }
    out << ">\n";
    if (entry.result) {
      out << "    <output>\n";
      XmlWriter(out).Write(*entry.result, 3);
      out << "    </output>\n";
    } else if (!entry.text.empty()) {
      out << "    <text>" << Escape(entry.text, false) << "</text>\n";
    }
    for (auto const& message : entry.messages) {
      out << "    <message>" << Escape(message, false) << "</message>\n";
    }
    out << "  </line>\n";
  }
  out << "</batch>\n";
}

void PrintXml(MetaObject const* root, std::ostream& out) {
  out << "<?xml version=\"1.0\" encoding=\"utf-8\"?>\n";
  if (!root) {
    out << "<output/>\n";
    return;
  }
  out << "<output>\n";
  XmlWriter(out).Write(*root, 1);
  out << "</output>\n";
}

}  // namespace Toolbase::Format::Internal
