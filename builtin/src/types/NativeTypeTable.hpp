// The native type constants as classification reads them: by the stored class and complexity of
// a live array rather than by a declaration's element type.
#pragma once

#include <optional>

#include <ka/class_id.hpp>

#include <builtin/types/NativeArgTypes.hpp>

namespace Norvane::builtin::types::detail {

// The element of the native view of full arrays of this class and complexity; none for a class
// that no view has (void, opaque, object) and for complex arrays of a class that is not an
// integer or floating class.
std::optional<NativeElement> nativeElementOfClass(kaClassID element, bool complex) noexcept;

// The constant, for an element and shape known to have one.
const ArgType& nativeConstant(NativeElement element, NativeShape shape) noexcept;

}  // namespace Norvane::builtin::types::detail
