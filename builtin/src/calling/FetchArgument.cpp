// The argument fetch of the wrapper family, compiled once for each alternative.
#include "WrapperTemplates.hpp"

#include <boost/variant/get.hpp>

namespace Norvane::builtin::builtinreg::detail {

template <class T>
T fetchArgument(const Parameter& argument) {
    return boost::get<T>(argument);
}

template std::uint64_t fetchArgument(const Parameter&);
template double fetchArgument(const Parameter&);
template float fetchArgument(const Parameter&);
template bool fetchArgument(const Parameter&);
template signed char fetchArgument(const Parameter&);
template short fetchArgument(const Parameter&);
template int fetchArgument(const Parameter&);
template std::int64_t fetchArgument(const Parameter&);
template unsigned char fetchArgument(const Parameter&);
template unsigned short fetchArgument(const Parameter&);
template unsigned int fetchArgument(const Parameter&);
template std::complex<double> fetchArgument(const Parameter&);
template std::complex<float> fetchArgument(const Parameter&);
template kaArray_tag* fetchArgument(const Parameter&);
template Norvane::String::String* fetchArgument(const Parameter&);
template Norvane::orro::OrroObject* fetchArgument(const Parameter&);

}  // namespace Norvane::builtin::builtinreg::detail
