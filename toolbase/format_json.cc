#include <nlohmann/json.hpp>
#include <ostream>

#include "format_internal.h"
#include "toolbase/meta_obj.h"

namespace Toolbase::Format::Internal {

using MetaObj::Kind;
using Json = nlohmann::ordered_json;

namespace {

Json ToJson(MetaObj::MetaObject const* value) {
  if (!value) return nullptr;
  switch (value->GetKind()) {
    case Kind::Bool: {
      auto const& flag = static_cast<MetaObj::MetaBool const&>(*value);
      return flag.HasValue() ? Json(flag.GetValue()) : Json(nullptr);
    }
    case Kind::Int: {
      auto const& number = static_cast<MetaObj::MetaInt const&>(*value);
      return number.HasValue() ? Json(number.GetValue()) : Json(nullptr);
    }
    case Kind::String: {
      auto const& text = static_cast<MetaObj::MetaString const&>(*value);
      return text.HasValue() ? Json(text.GetValue()) : Json(nullptr);
    }
    case Kind::Struct: {
      Json object = Json::object();
      for (auto const& [name, field] :
           static_cast<MetaObj::MetaStruct const&>(*value).GetFields()) {
        object[name] = ToJson(field.get());
      }
      return object;
    }
    case Kind::List: {
      Json array = Json::array();
      for (auto const& item : static_cast<MetaObj::MetaList const&>(*value).GetItems()) {
        array.push_back(ToJson(item.get()));
      }
      return array;
    }
  }
  return nullptr;
}

}  // namespace

void PrintJsonBatch(std::vector<BatchEntry> const& entries, std::ostream& out) {
  Json lines = Json::array();
  for (auto const& entry : entries) {
    Json line = Json::object();
    line["line"] = entry.line;
    line["command"] = entry.command;
    line["status"] = entry.status;
    line["applied"] = entry.applied;
    line["result"] = entry.result      ? ToJson(entry.result.get())
                     : entry.text.empty() ? Json(nullptr)
                                          : Json(entry.text);
    line["messages"] = entry.messages;
    lines.push_back(std::move(line));
  }
  out << lines.dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

void PrintJson(MetaObj::MetaObject const* root, std::ostream& out) {
  // Bytes that are not UTF-8 become U+FFFD rather than failing the output.
  out << ToJson(root).dump(2, ' ', false, Json::error_handler_t::replace) << '\n';
}

}  // namespace Toolbase::Format::Internal
