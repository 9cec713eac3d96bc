// Reading command results in the switch and port group tests.
#pragma once

#include <memory>
#include <string>

#include "toolbase/call_spec.h"
#include "toolbase/meta_obj.h"

namespace VswitchTest {

// The text of a field of the root structure: "true"/"false", a number, the
// string, or the items of a list joined by ","; "(none)" for a missing root
// or field.
inline std::string Field(std::shared_ptr<Toolbase::MetaObj::MetaStruct> const& record,
                         std::string const& name) {
  using namespace Toolbase::MetaObj;
  if (!record) return "(none)";
  auto value = record->GetField(name);
  if (!value) return "(none)";
  switch (value->GetKind()) {
    case Kind::Bool:
      return static_cast<MetaBool const&>(*value).GetValue() ? "true" : "false";
    case Kind::Int:
      return std::to_string(static_cast<MetaInt const&>(*value).GetValue());
    case Kind::String:
      return static_cast<MetaString const&>(*value).GetValue();
    case Kind::List: {
      std::string joined;
      for (auto const& item : static_cast<MetaList const&>(*value).GetItems()) {
        if (!joined.empty()) joined += ",";
        joined += static_cast<MetaString const&>(*item).GetValue();
      }
      return joined;
    }
    default:
      return "(struct)";
  }
}

inline std::shared_ptr<Toolbase::MetaObj::MetaStruct> Root(
    std::shared_ptr<Toolbase::CallSpec::Output> const& output) {
  return std::dynamic_pointer_cast<Toolbase::MetaObj::MetaStruct>(output->GetRootObject());
}

// True when the root is the bool true.
inline bool RootIsTrue(std::shared_ptr<Toolbase::CallSpec::Output> const& output) {
  auto root = std::dynamic_pointer_cast<Toolbase::MetaObj::MetaBool>(output->GetRootObject());
  return root && root->GetValue();
}

}  // namespace VswitchTest
