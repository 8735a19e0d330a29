#include <builtin/builtin.hpp>
