// Fuzz target: bytes decoded into one interpreted call of a builtin of the module bundles, as
// the interpreter makes it through BuiltinFcn::invoke, with arguments of every kind the array
// library has: numeric of every class, real and complex, of any shape with up to four
// dimensions, empty ones included; sparse; char rows; strings, with the flag words among them;
// cells and structs holding such arrays; function handles; the sample's Counter objects;
// instances of classes nobody registered; arrays whose dimensions are still opaque or whose data
// is shared; the same array twice. An argument may be a workspace variable (held by the second
// count alone) or a temporary that the call may write into; every other one is held by a
// reference of the caller's.
//
//   byte 0     the builtin, by its place in the sorted list of names
//   byte 1     bits 0-1 the outputs asked for (0, 1, 2), bit 2 the lists after the engine,
//              bit 3 no output array at all (with no output asked for), bit 4 a temporary
//   byte 2     the number of arguments, 0 to 4
//   then       each argument: a byte for its kind, then what that kind reads
//
// The builtin may refuse the call by throwing what the library documents: a message-id
// exception, or a std::logic_error (std::invalid_argument among them). Anything else that
// leaves the call, and every array left alive or freed twice, is a finding. Afterwards each
// argument is classified, which must agree with the classification core.
#include <algorithm>
#include <array>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <exception>
#include <sstream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include <builtin/builtin.hpp>
#include <builtin/services/BuiltinServices.hpp>
#include <fl/except.hpp>
#include <ka/ka.hpp>

#include "FuzzInput.hpp"
#include "SampleModules.hpp"

namespace {

using namespace Norvane::builtin;
using fuzz::Input;

struct Builtins {
    std::vector<const BuiltinFcn*> byName;
    const BuiltinFcn* counter = nullptr;
};

const Builtins& builtins() {
    static const Builtins found = [] {
        const declare::ModuleDirectory& modules = fuzz::sampleModules();
        Builtins result;
        for (const auto& [name, module] : modules.list())
            result.byName.push_back(modules.find(name));
        result.counter = modules.find("counter");
        if (result.byName.empty() || result.counter == nullptr)
            fuzz::fail("the sample module did not start");
        return result;
    }();
    return found;
}

constexpr std::array kNumericClasses = {
    kaLOGICAL_CLASS, kaCHAR_CLASS,   kaDOUBLE_CLASS, kaSINGLE_CLASS, kaINT8_CLASS,  kaUINT8_CLASS,
    kaINT16_CLASS,   kaUINT16_CLASS, kaINT32_CLASS,  kaUINT32_CLASS, kaINT64_CLASS, kaUINT64_CLASS};
// The flag words of the sample's builtins, and texts that are easy to get wrong.
constexpr std::array<std::u16string_view, 8> kWords = {u"even", u"away", u"ascend",      u"descend",
                                                       u"",     u"x",    u"stra\u00dfe", u"\xd800"};
constexpr std::array<std::string_view, 3> kFieldNames = {"a", "b", "c"};
// Class ids that no bundle hands out (the string class is 19, the class bundle's from 20).
constexpr int kFirstUnknownClass = 64;
constexpr std::size_t kMaxArguments = 4;

std::size_t product(const ka::Dims& dims) {
    std::size_t n = 1;
    for (std::size_t d : dims) n *= d;
    return n;
}

// Up to four dimensions of 0 to 4 each: none is 1-by-1, one {n} is n-by-1.
ka::Dims readDims(Input& in) {
    ka::Dims dims(in.below(5));
    for (std::size_t& d : dims) d = in.below(5);
    return dims;
}

std::u16string readText(Input& in) {
    const std::uint8_t choice = in.byte();
    if (choice < 0xc0) return std::u16string(kWords[choice % kWords.size()]);
    std::u16string text(in.below(6), u'\0');
    for (char16_t& c : text) c = in.raw<char16_t>();
    return text;
}

// Elements from the input: small integers, or every bit from the input (NaN, Inf, subnormal).
template <class T>
void fillElements(Input& in, void* data, std::size_t count) {
    const bool rawBits = in.flag();
    auto* out = static_cast<T*>(data);
    for (std::size_t i = 0; i < count; ++i) {
        out[i] = rawBits ? in.raw<T>() : static_cast<T>(static_cast<std::int8_t>(in.byte()));
    }
}

void fill(Input& in, kaArray_tag* array) {
    const std::size_t n = matrix::numberOfElements(array) * (matrix::isComplex(array) ? 2 : 1);
    void* data = matrix::data(array);
    switch (matrix::classId(array)) {
        case kaLOGICAL_CLASS: {
            auto* out = static_cast<bool*>(data);  // a bool holds 0 or 1, nothing else
            for (std::size_t i = 0; i < n; ++i) out[i] = (in.byte() & 1) != 0;
            return;
        }
        case kaCHAR_CLASS: return fillElements<char16_t>(in, data, n);
        case kaDOUBLE_CLASS: return fillElements<double>(in, data, n);
        case kaSINGLE_CLASS: return fillElements<float>(in, data, n);
        case kaINT8_CLASS: return fillElements<std::int8_t>(in, data, n);
        case kaUINT8_CLASS: return fillElements<std::uint8_t>(in, data, n);
        case kaINT16_CLASS: return fillElements<std::int16_t>(in, data, n);
        case kaUINT16_CLASS: return fillElements<std::uint16_t>(in, data, n);
        case kaINT32_CLASS: return fillElements<std::int32_t>(in, data, n);
        case kaUINT32_CLASS: return fillElements<std::uint32_t>(in, data, n);
        case kaINT64_CLASS: return fillElements<std::int64_t>(in, data, n);
        case kaUINT64_CLASS: return fillElements<std::uint64_t>(in, data, n);
        default: fuzz::fail("fill: not a numeric class");
    }
}

ka::ArrayPtr numeric(Input& in, const ka::Dims& dims) {
    const kaClassID classId = kNumericClasses[in.below(kNumericClasses.size())];
    const bool complex = in.flag() && classId != kaLOGICAL_CLASS && classId != kaCHAR_CLASS;
    ka::ArrayPtr array = ka::createNumeric(classId, dims, complex ? kaCOMPLEX : kaREAL);
    fill(in, array.get());
    return array;
}

ka::ArrayPtr sparse(Input& in) {
    constexpr std::array classes = {kaDOUBLE_CLASS, kaSINGLE_CLASS, kaLOGICAL_CLASS};
    const kaClassID classId = classes[in.below(classes.size())];
    const bool complex = classId != kaLOGICAL_CLASS && in.flag();
    const std::size_t rows = in.below(5), columns = in.below(5);
    std::vector<ka::SparseEntry> entries(rows * columns == 0 ? 0 : in.below(6));
    for (ka::SparseEntry& e : entries) {
        e.row = in.below(rows);
        e.column = in.below(columns);
        const auto re = static_cast<std::int8_t>(in.byte());
        const auto im = complex ? static_cast<std::int8_t>(in.byte()) : 0;
        e.value = classId == kaLOGICAL_CLASS ? std::complex<double>(re & 1)
                                             : std::complex<double>(re, im);
    }
    return ka::createSparse(classId, rows, columns, entries, complex ? kaCOMPLEX : kaREAL);
}

ka::ArrayPtr strings(Input& in) {
    const ka::Dims dims = in.byte() < 0xc0 ? ka::Dims{1, 1} : readDims(in);
    std::vector<std::u16string> texts(product(dims));
    for (std::u16string& text : texts) text = readText(in);
    return getHeldService<StringSupport>()->createString(dims, std::move(texts));
}

ka::ArrayPtr counter(Input& in) {
    const ka::ArrayPtr start = ka::scalar(static_cast<double>(static_cast<std::int8_t>(in.byte())));
    kaArray_tag* prhs[1] = {start.get()};
    kaArray_tag* plhs[1] = {nullptr};
    builtins().counter->invoke(1, plhs, 1, prhs, BuiltinFcn::VariantsToConsider::InvokeNoOrro);
    return ka::ArrayPtr(plhs[0]);
}

ka::ArrayPtr unknownObject(Input& in) {
    constexpr std::array stored = {kaOPAQUE_CLASS, kaOBJECT_CLASS, kaSTRUCT_CLASS};
    ka::ObjectDescription object;
    object.classId = static_cast<kaClassID>(kFirstUnknownClass + static_cast<int>(in.below(8)));
    object.className = "Unknown";
    object.storedClass = stored[in.below(stored.size())];
    object.dims = in.flag() ? ka::Dims{1, 1} : readDims(in);
    return ka::createObject(std::move(object));
}

// The arrays of one call, and how the caller holds each.
class Arguments {
public:
    Arguments() = default;
    Arguments(const Arguments&) = delete;
    Arguments& operator=(const Arguments&) = delete;
    ~Arguments() {
        for (const Held& held : held_) {
            if (held.workspace) {
                ka::unpin(held.array);
            } else if (held.array != temporary_) {
                matrix::releaseReference(held.array);
            }
        }
    }

    void read(Input& in, std::size_t count) {
        for (std::size_t i = 0; i < count; ++i) prhs_.push_back(argument(in));
    }

    // Gives the caller's reference on one argument up to the call, with the temporary mark, as
    // the interpreter passes the value of an expression that nobody else holds.
    void makeTemporary(Input& in) {
        if (prhs_.empty()) return;
        kaArray_tag* chosen = prhs_[in.below(prhs_.size())];
        if (std::count(prhs_.begin(), prhs_.end(), chosen) != 1) return;
        // Cells and structs hold arrays of their own; a temporary is a single array.
        if (chosen->storedClass == kaCELL_CLASS || chosen->storedClass == kaSTRUCT_CLASS) return;
        for (const Held& held : held_) {
            if (held.array == chosen && !held.workspace) {
                chosen->refCount = 0;
                chosen->flags |= matrix::flags::temporary;
                temporary_ = chosen;
            }
        }
    }

    std::vector<kaArray_tag*>& prhs() { return prhs_; }
    kaArray_tag* temporary() const { return temporary_; }
    std::vector<kaArray_tag*> heldByCaller() const {
        std::vector<kaArray_tag*> arrays;
        for (const Held& held : held_) {
            if (held.array != temporary_) arrays.push_back(held.array);
        }
        return arrays;
    }

private:
    struct Held {
        kaArray_tag* array;
        bool workspace;  // a variable: the second count holds it, the first is 0
    };

    kaArray_tag* hold(ka::ArrayPtr array, bool workspace) {
        kaArray_tag* a = array.release();
        if (workspace) {
            ka::pin(a);
            matrix::releaseReference(a);  // pinned, so it only drops to a first count of 0
        }
        held_.push_back({a, workspace});
        return a;
    }

    kaArray_tag* argument(Input& in) {
        const std::uint8_t kind = in.byte();
        const bool workspace = (kind & 0x80) != 0;
        switch (kind % 12) {
            case 0: return hold(numeric(in, readDims(in)), workspace);
            case 1: return hold(numeric(in, {1, 1}), workspace);
            case 2: return hold(sparse(in), workspace);
            case 3: return hold(ka::charArray(std::u16string_view(readText(in))), workspace);
            case 4: return hold(strings(in), workspace);
            case 5: return hold(container(in, 0), workspace);
            case 6: return hold(ka::createFunctionHandle(in.flag() ? "plus" : "f"), workspace);
            case 7: return hold(counter(in), workspace);
            case 8: return hold(unknownObject(in), workspace);
            case 9: {
                ka::ArrayPtr array = numeric(in, readDims(in));
                ka::makeDimensionsOpaque(array.get());
                return hold(std::move(array), workspace);
            }
            case 10: {
                // Shared data: the source is held as well, so that the data stays shared.
                const ka::Dims dims = readDims(in);
                ka::ArrayPtr source = numeric(in, dims);
                ka::ArrayPtr copy = ka::sharedDataCopy(source.get());
                hold(std::move(source), false);
                return hold(std::move(copy), workspace);
            }
            default:
                if (prhs_.empty()) return hold(numeric(in, {1, 1}), workspace);
                return prhs_[in.below(prhs_.size())];
        }
    }

    // A cell or struct array whose elements are arrays of the kinds above, or empty.
    ka::ArrayPtr container(Input& in, int depth) {
        const bool isStruct = in.flag();
        const ka::Dims dims = in.flag() ? ka::Dims{1, 1} : readDims(in);
        std::vector<std::string> fields;
        if (isStruct) {
            for (std::size_t i = 0, n = in.below(kFieldNames.size() + 1); i < n; ++i)
                fields.emplace_back(kFieldNames[i]);
        }
        std::vector<ka::ArrayPtr> elements(product(dims) * (isStruct ? fields.size() : 1));
        for (ka::ArrayPtr& element : elements) {
            switch (in.below(6)) {
                case 0: break;  // left empty
                case 1: element = numeric(in, readDims(in)); break;
                case 2: element = strings(in); break;
                case 3: element = counter(in); break;
                case 4: element = depth < 1 ? container(in, depth + 1) : nullptr; break;
                default: element = numeric(in, {1, 1}); break;
            }
        }
        if (isStruct) return ka::createStruct(dims, std::move(fields), std::move(elements));
        return ka::createCell(dims, std::move(elements));
    }

    std::vector<kaArray_tag*> prhs_;
    std::vector<Held> held_;
    kaArray_tag* temporary_ = nullptr;
};

// getArgTypeOfKaArray never throws and agrees with the classification core, whose only refusal
// is std::invalid_argument; the type prints.
void checkClassification(const kaArray_tag* array) {
    const types::ArgType type = types::getArgTypeOfKaArray(array);
    try {
        if (!(types::classifyKaArray(array).first == type))
            fuzz::fail("the two classifications disagree");
    } catch (const std::invalid_argument&) {
        if (!std::holds_alternative<types::UnsupportedArgType>(type))
            fuzz::fail("a refused array has a type");
    }
    // The stream form converts a flag's text to UTF-8, which refuses unpaired surrogates.
    try {
        std::ostringstream printed;
        printed << type;
    } catch (const std::invalid_argument&) {
    }
}

void call(Input& in) {
    const Builtins& all = builtins();
    const BuiltinFcn& fcn = *all.byName[in.below(all.byName.size())];
    const std::uint8_t mode = in.byte();
    const int nlhs = (mode & 3) % 3;
    const auto lists = (mode & 4) != 0 ? BuiltinFcn::VariantsToConsider::InvokeAfterOrro
                                       : BuiltinFcn::VariantsToConsider::InvokeNoOrro;
    const bool noOutputArray = nlhs == 0 && (mode & 8) != 0;

    const std::size_t before = ka::liveArrayCount();
    kaArray_tag* temporary = nullptr;
    bool temporaryIsOutput = false;
    {
        Arguments arguments;
        arguments.read(in, in.below(kMaxArguments + 1));
        if ((mode & 16) != 0) arguments.makeTemporary(in);
        temporary = arguments.temporary();

        std::array<kaArray_tag*, 2> plhs = {nullptr, nullptr};
        try {
            fcn.invoke(nlhs, noOutputArray ? nullptr : plhs.data(),
                       static_cast<int>(arguments.prhs().size()), arguments.prhs().data(), lists);
        } catch (const foundation::core::except::IException&) {
        } catch (const std::logic_error&) {
        } catch (const std::exception& e) {
            fuzz::fail(fcn.getName() + " threw an undocumented exception: " + e.what());
        }
        for (kaArray_tag* output : plhs) {
            temporaryIsOutput = temporaryIsOutput || (output != nullptr && output == temporary);
            matrix::releaseReference(output);
        }
        for (const kaArray_tag* array : arguments.heldByCaller()) checkClassification(array);
    }
    auto left = static_cast<long long>(ka::liveArrayCount()) - static_cast<long long>(before);
    // The call either took the temporary (as a reference it released, or as its output) or left
    // it untouched in the caller's hands, for the caller to free. A temporary holds no other
    // array, so it is the one array left then.
    if (temporary != nullptr && !temporaryIsOutput && left == 1) {
        matrix::destroyArray(temporary);
        left = 0;
    }
    if (left != 0)
        fuzz::fail(fcn.getName() + ": " + std::to_string(left) +
                   " arrays alive (or freed twice) after the call");
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int*, char***) {
    builtins();
    return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Input in(data, size);
    call(in);
    return 0;
}
