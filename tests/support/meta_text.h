// Renders an output tree as one compact line, for comparing results in tests:
// a struct as "{Field=value,...}" in field order, a list as "[a,b]", an empty
// value as "".
#pragma once

#include <memory>
#include <string>

#include "toolbase/meta_obj.h"

namespace TestSupport {

inline std::string MetaText(std::shared_ptr<Toolbase::MetaObj::MetaObject> const& object) {
  using namespace Toolbase::MetaObj;
  if (!object) return "(none)";
  switch (object->GetKind()) {
    case Kind::Bool: {
      auto const& value = static_cast<MetaBool const&>(*object);
      return value.HasValue() ? (value.GetValue() ? "true" : "false") : "";
    }
    case Kind::Int: {
      auto const& value = static_cast<MetaInt const&>(*object);
      return value.HasValue() ? std::to_string(value.GetValue()) : "";
    }
    case Kind::String:
      return static_cast<MetaString const&>(*object).GetValue();
    case Kind::Struct: {
      std::string text = "{";
      for (auto const& [key, value] : static_cast<MetaStruct const&>(*object).GetFields()) {
        text += (text.size() > 1 ? "," : "") + key + "=" + MetaText(value);
      }
      return text + "}";
    }
    case Kind::List: {
      std::string text = "[";
      for (auto const& item : static_cast<MetaList const&>(*object).GetItems()) {
        text += (text.size() > 1 ? "," : "") + MetaText(item);
      }
      return text + "]";
    }
  }
  return "?";
}

}  // namespace TestSupport
