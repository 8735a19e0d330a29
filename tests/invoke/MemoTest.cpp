// The memo of accepted variants against the search that it saves, with the reference bundles
// (strings, flags, Counter objects): generated lists and random calls, each made without the
// memo and with it, must come to the same variant with the same arguments, the same default
// implementation or the same error; and eight threads calling one builtin must each see what a
// lone caller sees.
#include <gtest/gtest.h>

#include <ModuleHost.hpp>

#include <boost/variant/apply_visitor.hpp>
#include <boost/variant/get.hpp>

#include <builtin/objects/objects.hpp>
#include <builtin/services/services.hpp>
#include <builtin/types/ClassifyKaArray.hpp>
#include <classbundle/ClassSystem.hpp>
#include <foundation/cppmicroservices/framework.hpp>

#include <algorithm>
#include <complex>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <random>
#include <thread>

#include "../../builtin/src/invoke/VariantMemoSwitch.hpp"
#include "InvokeSupport.hpp"
#include "LiveArrays.hpp"

namespace invoketest {
namespace {

using Norvane::builtin::detail::setVariantMemoEnabled;

// What a call came to: the variant that ran ("default" for the default implementation), each
// argument it received (alternative and value; arrays by address), and the delivered value; or
// the error.
struct Outcome {
    std::string ran;
    std::vector<std::pair<int, double>> arguments;
    double result = 0;
    std::string error;
    bool operator==(const Outcome&) const = default;
};
thread_local Outcome current;

struct ValueOf : boost::static_visitor<double> {
    template <class T>
    double operator()(T value) const {
        if constexpr (std::is_pointer_v<T>) {
            return static_cast<double>(reinterpret_cast<std::uintptr_t>(value));
        } else if constexpr (std::is_arithmetic_v<T>) {
            return static_cast<double>(value);
        } else {
            return value.real() + 2 * value.imag();
        }
    }
};

Parameter notingEntry(OrroFunctionDescriptor* d, IOrroBuiltinEnvironment*, bool& pending,
                      const ParameterList& arguments) {
    pending = false;
    current.ran = nameOf(d);
    for (const Parameter& argument : arguments) {
        current.arguments.emplace_back(argument.which(), boost::apply_visitor(ValueOf(), argument));
        if (argument.which() == 13) matrix::releaseReference(boost::get<kaArray_tag*>(argument));
    }
    return Parameter(static_cast<double>(arguments.size()));
}
void notingDefault(int nlhs, kaArray_tag** plhs, int, kaArray_tag**, OrroFunctionDescriptor*) {
    current.ran = "default";
    if (nlhs >= 1) plhs[0] = ka::scalar(-1.0).release();
}

BuiltinVariant noting(std::vector<ArgType> in, std::string name,
                      V::IsElementWise lifted = V::IsElementWise::NO,
                      std::vector<ArgType> out = {scalar()}) {
    return makeVariant({.in = std::move(in),
                        .out = std::move(out),
                        .typedEntry = &notingEntry,
                        .elementWise = lifted,
                        .name = std::move(name)});
}
BuiltinVariant defaultImplementation(bool present = true) {
    return makeVariant(
        {.typedEntry = nullptr,
         .nativeEntry = present ? reinterpret_cast<NativeEntry>(&notingDefault) : nullptr,
         .name = "default"});
}

// A call asking for no output passes a null plhs for an even count of arguments.
Outcome callOnce(const BuiltinFcn& fcn, int nlhs, std::vector<kaArray_tag*> args,
                 Consider consider) {
    current = Outcome();
    kaArray_tag* plhs[2] = {nullptr, nullptr};
    try {
        fcn.invoke(nlhs, nlhs == 0 && args.size() % 2 == 0 ? nullptr : plhs,
                   static_cast<int>(args.size()), args.data(), consider);
        const ka::ArrayPtr result(plhs[0]);
        if (result) current.result = static_cast<const double*>(matrix::data(result.get()))[0];
    } catch (const std::exception& error) {
        current.error = error.what();
    }
    return current;
}

// What variants declare: numbers, arrays loose and strict, flags, strings and Counter objects.
std::vector<ArgType> declaredTypes() {
    const auto strict = [](Shape shape, std::size_t dim) {
        return ArgType(KaArrayTypes(kaDOUBLE_CLASS, shape, KaArrayTypes::Density::FULL,
                                    KaArrayTypes::Complexity::NOT_COMPLEX, dim));
    };
    return {scalar(),
            scalar(kaSINGLE_CLASS),
            scalar(kaINT16_CLASS),
            scalar(kaLOGICAL_CLASS),
            scalar(kaCHAR_CLASS),
            scalar(kaDOUBLE_CLASS, true),
            anyArray(),
            anyArray(kaINT16_CLASS),
            strict(Shape::ROW, 1),
            strict(Shape::TWO_D, 2),
            KaArrayTypes(kaDOUBLE_CLASS, Shape::TWO_D, KaArrayTypes::Density::SPARSE,
                         KaArrayTypes::Complexity::NOT_COMPLEX, 2),
            flag("fast"),
            flag("slow"),
            flag(""),
            KeldorStringType(KeldorStringType::Shape::ANY),
            KeldorStringType(KeldorStringType::Shape::SCALAR),
            OrroObjectTypes(classbundle::kFirstClassId, 0, false)};
}

// A builtin with lists of random variants, a third of them element-wise, some of more inputs
// than a call key holds; the default implementation is missing now and then.
struct Generated {
    Lists lists;
    std::unique_ptr<TestFcn> fcn;

    Generated(std::mt19937& rng, const std::vector<ArgType>& types, int number) {
        const auto pick = [&rng](std::size_t n) {
            return std::uniform_int_distribution<std::size_t>(0, n - 1)(rng);
        };
        const std::size_t arities[] = {0, 1, 1, 2, 2, 2, 3, 3, 7};
        int named = 0;
        const auto list = [&](std::size_t count) {
            std::vector<BuiltinVariant> variants;
            for (std::size_t v = 0; v < count; ++v) {
                std::vector<ArgType> in(arities[pick(std::size(arities))]);
                for (ArgType& type : in) type = types[pick(types.size())];
                variants.push_back(
                    noting(std::move(in), std::to_string(number) + "." + std::to_string(named++),
                           pick(3) == 0 ? V::IsElementWise::YES : V::IsElementWise::NO,
                           pick(4) == 0 ? std::vector<ArgType>{} : std::vector{scalar()}));
            }
            std::sort(variants.begin(), variants.end());
            return variants;
        };
        lists.noOrro = list(pick(40));
        lists.afterOrro = list(1 + pick(30));
        lists.complexScalar = lists.afterOrro;
        for (BuiltinVariant& extra : list(pick(4))) lists.complexScalar.push_back(std::move(extra));
        std::sort(lists.complexScalar.begin(), lists.complexScalar.end());
        fcn = std::make_unique<TestFcn>(lists, defaultImplementation(pick(5) != 0));
    }
};

// The arguments of the calls, made afresh for each thread: numbers, arrays of shapes that do and
// do not broadcast (one of them with dimensions that are made opaque before each call),
// strings that flags stand for and others, Counter objects, instances that classification
// refuses (no object inside) or that no signature speaks of. Past the end: a null argument.
std::vector<std::function<ka::ArrayPtr()>> argumentMakers() {
    const auto numeric = [](kaClassID id, ka::Dims dims) {
        return [=] { return ka::createNumeric(id, dims); };
    };
    const auto strings = [](std::vector<std::u16string> texts) {
        return [texts] {
            const std::size_t dims[] = {1, texts.size()};
            return getHeldService<StringSupport>()->createString(dims, texts);
        };
    };
    const auto instance = [](kaClassID classId, kaClassID stored) {
        return [=] {
            return ka::createObject<int>(classId, "", std::make_shared<int>(1), {1, 1}, stored);
        };
    };
    const auto counter = [] {
        return orroobject::toKaArray(
            boost::intrusive_ptr<const Norvane::orro::OrroObject>(new classbundle::Counter(1)),
            classbundle::kCounterClassName);
    };
    return {[] { return ka::scalar(2.0); },   // 0
            [] { return ka::scalar(2.5f); },  // 1
            [] { return ka::scalar<std::int16_t>(-3); },
            [] { return ka::scalar(true); },
            [] { return ka::charArray(std::u16string_view(u"c")); },
            [] { return ka::scalar(std::complex<double>(1, 2)); },
            numeric(kaDOUBLE_CLASS, {1, 3}),  // 6
            numeric(kaDOUBLE_CLASS, {2, 1}),
            numeric(kaDOUBLE_CLASS, {2, 3}),
            numeric(kaDOUBLE_CLASS, {3, 2}),
            numeric(kaINT16_CLASS, {2, 3}),  // 10
            numeric(kaDOUBLE_CLASS, {2, 3, 4}),
            numeric(kaDOUBLE_CLASS, {0, 3}),
            [] {
                return ka::createSparse(kaDOUBLE_CLASS, 3, 3, {{0, 0, 1.0}});
            },
            [] {
                return ka::createCell({1, 1});
            },
            strings({u"fast"}),  // 15
            strings({u"slow"}),
            strings({u""}),
            strings({u"fast", u"slow"}),
            [] { return ka::charArray(std::u16string_view(u"fast")); },
            counter,  // 20
            instance(classbundle::kFirstClassId, kaOPAQUE_CLASS),
            instance(kaClassID(99), kaOPAQUE_CLASS),
            instance(kaClassID(99), kaOBJECT_CLASS),
            numeric(kaDOUBLE_CLASS, {2, 1}),  // 24, opaque
            numeric(kaDOUBLE_CLASS, {1, 2}),
            numeric(kaDOUBLE_CLASS, {3, 1})};
}
constexpr std::size_t kCounter = 20, kOpaque = 24, kNull = 27;

// Arrays of one code (class and dimension categories) whose dimensions differ, so that they
// broadcast against different partners: 2-by-3 and 3-by-2, 1-by-3 and 1-by-2, 2-by-1 and
// 3-by-1.
std::size_t twinOf(std::size_t i) {
    switch (i) {
        case 8: return 9;
        case 9: return 8;
        case 6: return 25;
        case 25: return 6;
        case 7: return 26;
        case 26: return 7;
        default: return i;
    }
}

class Memo : public testsupport::LiveArrayTest {
protected:
    static void SetUpTestSuite() { testsupport::startFramework(); }
    void SetUp() override {
        LiveArrayTest::SetUp();
        for (const auto& make : argumentMakers()) pool_.push_back(make());
    }
    void TearDown() override {
        setVariantMemoEnabled(true);
        for (const ka::ArrayPtr& array : pool_) EXPECT_EQ(array->refCount, 1u);
        pool_.clear();
        LiveArrayTest::TearDown();
    }

    // An argument tuple: positions in the pool, the position past its end standing for null.
    std::vector<kaArray_tag*> arguments(const std::vector<std::size_t>& at) const {
        std::vector<kaArray_tag*> args;
        for (std::size_t i : at) args.push_back(i < pool_.size() ? pool_[i].get() : nullptr);
        ka::makeDimensionsOpaque(pool_[kOpaque].get());
        return args;
    }

    std::vector<ka::ArrayPtr> pool_;
};

struct Call {
    std::size_t builtin;
    int nlhs;
    Consider consider;
    std::vector<std::size_t> at;
};

// Calls drawn from a working set per builtin, which is renewed now and then, so that most keys
// recur (and hit) while the sets of 16 entries still have to give way. A new tuple is aimed at
// a variant of the list it searches (with the variant's count of outputs, or none; each argument
// one that its input takes, as declared or as an array, where the pool has one; a Counter for a
// Counter, known or not), or is the twin of one in the set (the same key, other dimensions), or
// is random.
std::vector<Call> randomCalls(std::mt19937& rng,
                              const std::vector<std::unique_ptr<Generated>>& builtins,
                              const std::vector<ka::ArrayPtr>& pool, std::size_t count) {
    const auto pick = [&rng](std::size_t n) {
        return std::uniform_int_distribution<std::size_t>(0, n - 1)(rng);
    };
    const auto aimedAt = [&](const BuiltinVariant& variant) {
        std::vector<std::size_t> at;
        for (const ArgType& declared : variant.inputArgTypes) {
            std::vector<std::size_t> taken;
            if (std::holds_alternative<OrroObjectTypes>(declared)) taken.push_back(kCounter);
            for (std::size_t i = 0; i < pool.size(); ++i) {
                const ArgType live = getArgTypeOfKaArray(pool[i].get());
                if (isAcceptable(declared, live) ||
                    isAcceptable(asElementWiseArrayType(declared), live)) {
                    taken.push_back(i);
                }
            }
            at.push_back(taken.empty() ? pick(pool.size() + 1) : taken[pick(taken.size())]);
        }
        return at;
    };
    std::vector<std::vector<Call>> working(builtins.size());
    std::vector<Call> calls;
    const std::size_t arities[] = {0, 1, 1, 2, 2, 2, 3, 3, 7};
    const int outputs[] = {0, 1, 1, 1, 2};
    while (calls.size() < count) {
        const std::size_t b = pick(builtins.size());
        if (working[b].size() < 12 || pick(8) == 0) {
            Call call{b, outputs[pick(5)], static_cast<Consider>(pick(2)), {}};
            const Lists& lists = builtins[b]->lists;
            const auto& list =
                call.consider == Consider::InvokeNoOrro ? lists.noOrro : lists.afterOrro;
            if (const std::size_t way = pick(3); way == 0 && !list.empty()) {
                const BuiltinVariant& variant = list[pick(list.size())];
                call.at = aimedAt(variant);
                call.nlhs = pick(2) == 0 ? 0 : static_cast<int>(variant.outputArgTypes.size());
            } else if (way == 1 && !working[b].empty()) {
                call = working[b][pick(working[b].size())];
                std::transform(call.at.begin(), call.at.end(), call.at.begin(), twinOf);
            } else {
                call.at.resize(arities[pick(std::size(arities))]);
                for (std::size_t& i : call.at) i = pick(pool.size() + 1);
            }
            if (working[b].size() < 12) {
                working[b].push_back(call);
            } else {
                working[b][pick(12)] = call;
            }
        }
        calls.push_back(working[b][pick(working[b].size())]);
    }
    return calls;
}

TEST_F(Memo, EveryCallComesOutAsWithoutIt) {
    std::mt19937 rng(20240521);
    const std::vector<ArgType> types = declaredTypes();
    std::vector<std::unique_ptr<Generated>> builtins;
    for (int b = 0; b < 24; ++b) builtins.push_back(std::make_unique<Generated>(rng, types, b));
    const std::vector<Call> calls = randomCalls(rng, builtins, pool_, 120'000);
    std::size_t compared = 0, reached = 0;
    const auto compare = [&](std::size_t first, std::size_t last) {
        for (std::size_t c = first; c < last; ++c) {
            const Call& call = calls[c];
            const BuiltinFcn& fcn = *builtins[call.builtin]->fcn;
            setVariantMemoEnabled(false);
            const Outcome searched = callOnce(fcn, call.nlhs, arguments(call.at), call.consider);
            setVariantMemoEnabled(true);
            const Outcome remembered = callOnce(fcn, call.nlhs, arguments(call.at), call.consider);
            ASSERT_EQ(remembered, searched) << "call " << c << " of builtin " << call.builtin;
            ++compared;
            reached +=
                c >= calls.size() - 10'000 && !searched.ran.empty() && searched.ran != "default";
        }
    };
    // Counter becomes a known class half-way: before, its objects are asked about afresh and
    // none may be remembered as of no type.
    compare(0, calls.size() / 2);
    builtinreg::registerOrroObjectHelper(classbundle::kCounterClassName, 0);
    ASSERT_TRUE(builtinreg::isAKnownOrroObject(classbundle::kFirstClassId));
    compare(calls.size() / 2, calls.size());
    EXPECT_EQ(compared, calls.size());

    // Lists do not change once in use; here every declared input is made to take nothing, so
    // that a search finds no variant and only a call that the memo answers still reaches one.
    for (const auto& generated : builtins) {
        for (auto* list : {&generated->lists.noOrro, &generated->lists.afterOrro,
                           &generated->lists.complexScalar}) {
            for (BuiltinVariant& variant : *list) {
                std::fill(variant.inputArgTypes.begin(), variant.inputArgTypes.end(),
                          ArgType(UnsupportedArgType()));
            }
        }
    }
    std::size_t answered = 0;
    for (std::size_t c = calls.size() - 10'000; c < calls.size(); ++c) {
        const Call& call = calls[c];
        const Outcome outcome =
            callOnce(*builtins[call.builtin]->fcn, call.nlhs, arguments(call.at), call.consider);
        answered += !outcome.ran.empty() && outcome.ran != "default";
    }
    EXPECT_GT(reached, 2'000u);
    EXPECT_GT(answered, reached / 3) << "the memo answered too few calls to have been tried";
}

TEST_F(Memo, EightThreadsSeeWhatALoneCallerSees) {
    // One builtin of numbers, arrays lifted or not, flags and a default; each thread calls it
    // with arrays of its own, in an order of its own.
    const auto lifted = V::IsElementWise::YES;
    Lists lists{.noOrro = {noting({scalar(), scalar()}, "double, double", lifted),
                           noting({scalar(kaINT16_CLASS), scalar()}, "int16, double", lifted),
                           noting({anyArray(), anyArray()}, "array, array"),
                           noting({scalar(), flag("fast")}, "double, fast"),
                           noting({scalar(kaLOGICAL_CLASS)}, "logical")}};
    std::sort(lists.noOrro.begin(), lists.noOrro.end());
    const TestFcn fcn(lists, defaultImplementation());
    const std::vector<std::vector<std::size_t>> tuples = {
        {0, 0},   {2, 0},     {8, 0},     {8, 8}, {8, 9}, {8, 7}, {10, 8},
        {0, 15},  {0, 16},    {0, 18},    {3},    {1},    {6, 6}, {11, 8},
        {12, 12}, {0, kNull}, {kNull, 0}, {5, 0}, {3, 3}, {2, 2}};
    std::vector<Outcome> expected;
    setVariantMemoEnabled(false);
    for (const auto& at : tuples)
        expected.push_back(callOnce(fcn, 1, arguments(at), Consider::InvokeNoOrro));
    setVariantMemoEnabled(true);

    // Arguments are compared by alternative and number: each thread has arrays of its own.
    const auto withoutAddresses = [](Outcome outcome) {
        for (auto& [which, value] : outcome.arguments) value = which == 13 ? 0 : value;
        return outcome;
    };
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
    constexpr int kCalls = 10'000;
#else
    constexpr int kCalls = 40'000;
#endif
    constexpr std::size_t kThreads = 8;
    std::vector<std::string> failures(kThreads);
    std::vector<std::thread> threads;
    for (std::size_t t = 0; t < kThreads; ++t) {
        threads.emplace_back([&, t] {
            std::vector<ka::ArrayPtr> own;
            for (const auto& make : argumentMakers()) own.push_back(make());
            std::mt19937 rng(static_cast<unsigned>(t));
            for (int c = 0; c < kCalls && failures[t].empty(); ++c) {
                const std::size_t k = rng() % tuples.size();
                std::vector<kaArray_tag*> args;
                for (std::size_t i : tuples[k])
                    args.push_back(i < own.size() ? own[i].get() : nullptr);
                if (withoutAddresses(callOnce(fcn, 1, args, Consider::InvokeNoOrro)) !=
                    withoutAddresses(expected[k])) {
                    failures[t] = "thread " + std::to_string(t) + ", tuple " + std::to_string(k);
                }
            }
        });
    }
    for (std::thread& thread : threads) thread.join();
    for (const std::string& failure : failures) EXPECT_EQ(failure, "");
}

}  // namespace
}  // namespace invoketest
