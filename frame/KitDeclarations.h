// The framework's types that the plug-in's kit headers name only by pointer
// or reference, declared without their definitions so that a kit header
// stays light.
#pragma once

namespace Toolbase::CallSpec {
class Input;
class InputSpec;
class Output;
class OutputSpec;
class ParameterSpec;
}  // namespace Toolbase::CallSpec
namespace Toolbase::MetaObj {
class MetaList;
class MetaObject;
class MetaStruct;
}  // namespace Toolbase::MetaObj
