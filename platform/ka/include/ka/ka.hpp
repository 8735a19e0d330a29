// The array library: the array record, its class numbers, the reads and updates done in
// place, the few functions called in the library, typed views, and what is needed to build,
// show and account for arrays.
//
// Inline reads and updates (namespace matrix, <ka/ops.hpp>):
//   classId(a)            stored class, or _get_class_id_non_trivial() above kaFUNCTION_CLASS
//   isSparse(a)           flag 0x10
//   isComplex(a)          flags 0x80 and 0x800 both
//   isTwoD(a)             flag 0x80000
//   completeDimensions(a) runs _complete_opaque_dimensions() if flag 0x100 is set
//   dimensions(a)         std::span<const size_t>, completed first
//   numberOfDimensions(a), numberOfElements(a)   (no dimensions: one element)
//   data(a)               the data pointer
//   isDataShared(a)       flag 0x1000 and is_data_shared_impl()
//   takeReference(a)      clears 0x200, first count + 1
//   releaseReference(a)   null: nothing; first count < 2 and second <= 0: destroyArray;
//                         else first count - 1
//   isExclusive(a)        first count + second count <= 1
//
// Called functions (<ka/imports.hpp>): matrix::destroyArray, matrix::handleWarning,
// matrix::detail::do_create_uninitnumeric, rejectInvalidClassId, rejectArrayShape,
// kaDestroy_deleter, and detail::noninlined::ka_array_api::kaIsScalar, kaIsEmpty, kaGetN.
//
// Views: matrix::typed_array<T>, matrix::typed_sparse_matrix<T> (<ka/views.hpp>).
// Building arrays: namespace ka (<ka/create.hpp>). Showing them: ka::print (<ka/print.hpp>).
// Live-array count, second-count holds, warning handler: <ka/runtime.hpp>.
//
// Reference counts are plain integers: an array's references are taken and released on one
// thread at a time.
#pragma once

#include <ka/array.hpp>
#include <ka/class_id.hpp>
#include <ka/create.hpp>
#include <ka/imports.hpp>
#include <ka/ops.hpp>
#include <ka/print.hpp>
#include <ka/runtime.hpp>
#include <ka/views.hpp>
