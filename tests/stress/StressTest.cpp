// Eight threads call the sample module's builtins through BuiltinFcn::invoke, as interpreters of
// one process do, mixing every road a call takes: two unboxed scalars, array functions with
// flags, lifted loops large enough to share out among workers (sometimes into a temporary that
// becomes the result), a warning, an error and an object of the class system. Meanwhile another
// thread stores object manifests and reads them back, also the one whose class the calls use.
//
// Every result is checked; each call must bring exactly its own warnings to its own thread;
// no array may outlive the run.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <latch>
#include <limits>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <unordered_set>
#include <utility>
#include <vector>

#include <builtin/declare/ModuleDirectory.hpp>
#include <builtin/objects/OrroObjectRuntimeInfo.hpp>
#include <builtin/services/BuiltinServices.hpp>
#include <classbundle/ClassSystem.hpp>
#include <foundation/cppmicroservices/framework.hpp>
#include <ka/ka.hpp>

#include "ModuleHost.hpp"

namespace {

using namespace Norvane::builtin;

// Calls per thread. Under AddressSanitizer or ThreadSanitizer the full count took some 55 s on
// two busy cores, close to a minute before ctest runs another test beside it; half the calls
// still take every road thousands of times on every thread.
#if defined(__SANITIZE_ADDRESS__) || defined(__SANITIZE_THREAD__)
constexpr int kCallsPerThread = 50'000;
#else
constexpr int kCallsPerThread = 100'000;
#endif
constexpr int kCallThreads = 8;
// Above the lifted loops' parallel threshold of 1024 elements.
constexpr std::size_t kLarge = 1500;
const std::u16string kSqrtWarning =
    u"sqrt of a negative number is NaN here; take the sqrt of a complex number instead";

template <class T>
const T* elements(const kaArray_tag* a) {
    return static_cast<const T*>(matrix::data(a));
}

std::string text(double value) {
    return std::to_string(value);
}

// The thread of one interpreter: its own arrays (reference counts are plain and belong to one
// thread), its own warning scope, and a note of what went wrong.
class Caller {
public:
    Caller(const declare::ModuleDirectory& directory, int index)
        : directory_(directory),
          index_(index),
          scope_([this](const std::u16string& w) { warnings_.push_back(w); }) {}

    // Calls the builtin with one output; the arguments stay the caller's, except a temporary,
    // which the call may take over as its result.
    ka::ArrayPtr call(const char* name, std::initializer_list<kaArray_tag*> arguments) {
        const BuiltinFcn* fcn = directory_.find(name);
        if (fcn == nullptr) throw std::logic_error(std::string("no builtin ") + name);
        std::vector<kaArray_tag*> prhs(arguments);
        kaArray_tag* plhs[1] = {nullptr};
        try {
            fcn->invoke(1, plhs, static_cast<int>(prhs.size()), prhs.data(),
                        BuiltinFcn::VariantsToConsider::InvokeNoOrro);
        } catch (...) {
            if (plhs[0] != nullptr) fail(std::string(name) + ": a failed call filled plhs");
            throw;
        }
        return ka::ArrayPtr(plhs[0]);
    }

    void expect(bool ok, const std::string& what) {
        if (!ok) fail(what);
    }
    void expectValues(const kaArray_tag* result, kaClassID classId, const ka::Dims& dims,
                      const std::vector<double>& expected, const char* what) {
        if (result == nullptr) return fail(std::string(what) + ": no result");
        const auto d = matrix::dimensions(result);
        if (matrix::classId(result) != classId || ka::Dims(d.begin(), d.end()) != dims) {
            return fail(std::string(what) + ": wrong class or dimensions");
        }
        const double* values = elements<double>(result);
        for (std::size_t k = 0; k < expected.size(); ++k) {
            const bool same =
                std::isnan(expected[k]) ? std::isnan(values[k]) : values[k] == expected[k];
            if (!same) {
                return fail(std::string(what) + ": element " + std::to_string(k) + " is " +
                            text(values[k]) + ", not " + text(expected[k]));
            }
        }
    }
    void fail(std::string what) {
        if (failures_++ == 0)
            firstFailure_ = "thread " + std::to_string(index_) + ": " + std::move(what);
    }

    // Warnings that reached this thread since the last look.
    std::vector<std::u16string> takeWarnings() { return std::exchange(warnings_, {}); }

    int index() const { return index_; }
    long failures() const { return failures_; }
    const std::string& firstFailure() const { return firstFailure_; }

private:
    const declare::ModuleDirectory& directory_;
    int index_;
    std::vector<std::u16string> warnings_;
    ka::ThreadWarningScope scope_;
    long failures_ = 0;
    std::string firstFailure_;
};

ka::ArrayPtr scalarString(std::u16string text) {
    const std::size_t dims[] = {1, 1};
    return getHeldService<StringSupport>()->createString(dims, {std::move(text)});
}

// 1-by-n doubles first, first + step, ...
ka::ArrayPtr ramp(std::size_t n, double first, double step) {
    std::vector<double> values(n);
    for (std::size_t k = 0; k < n; ++k) values[k] = first + step * static_cast<double>(k);
    return ka::createFrom<double>({1, n}, values);
}

// One road of a call: makes its inputs from the call's number, calls, and checks the result. The
// number of warnings the call must raise goes with it.
struct Road {
    const char* name;
    int warnings;
    void (*run)(Caller&, int i);
};

const Road kRoads[] = {
    {"scalar plus", 0,
     [](Caller& c, int i) {
         const ka::ArrayPtr a = ka::scalar(double(i)), b = ka::scalar(c.index() + 0.5);
         const ka::ArrayPtr r = c.call("plus", {a.get(), b.get()});
         c.expectValues(r.get(), kaDOUBLE_CLASS, {1, 1}, {i + c.index() + 0.5}, "scalar plus");
         c.expect(a->refCount == 1 && b->refCount == 1, "scalar plus: an input's count changed");
     }},
    {"sum of a matrix", 0,
     [](Caller& c, int i) {
         const double x = i % 100;
         const ka::ArrayPtr m = ka::fromRows<double>(3, 4, {x, 1, 2, 3, 4, x, 6, 7, 8, 9, x, 11});
         c.expectValues(c.call("sum", {m.get()}).get(), kaDOUBLE_CLASS, {1, 4},
                        {x + 12, x + 10, x + 8, 21}, "sum");
     }},
    {"sort with a flag", 0,
     [](Caller& c, int i) {
         const double x = i % 9 - 4;
         const ka::ArrayPtr row = ka::row({2.5, std::nan(""), x, -1.0});
         if (i % 2 == 0) {
             const ka::ArrayPtr descend = scalarString(u"descend");
             const std::vector<double> sorted = x > 2.5    ? std::vector<double>{x, 2.5, -1, NAN}
                                                : x > -1.0 ? std::vector<double>{2.5, x, -1, NAN}
                                                           : std::vector<double>{2.5, -1, x, NAN};
             c.expectValues(c.call("sort", {row.get(), descend.get()}).get(), kaDOUBLE_CLASS,
                            {1, 4}, sorted, "sort descend");
         } else {
             const std::vector<double> sorted = x < -1.0  ? std::vector<double>{x, -1, 2.5, NAN}
                                                : x < 2.5 ? std::vector<double>{-1, x, 2.5, NAN}
                                                          : std::vector<double>{-1, 2.5, x, NAN};
             c.expectValues(c.call("sort", {row.get()}).get(), kaDOUBLE_CLASS, {1, 4}, sorted,
                            "sort");
         }
     }},
    {"large plus, array and scalar", 0,
     [](Caller& c, int i) {
         const ka::ArrayPtr a = ramp(kLarge, i, 1), b = ka::scalar(0.25 * c.index());
         std::vector<double> expected(kLarge);
         for (std::size_t k = 0; k < kLarge; ++k) expected[k] = i + double(k) + 0.25 * c.index();
         c.expectValues(c.call("plus", {a.get(), b.get()}).get(), kaDOUBLE_CLASS, {1, kLarge},
                        expected, "large plus");
     }},
    {"large plus into a temporary", 0,
     [](Caller& c, int i) {
         // The interpreter hands over a temporary with no count of its own and its mark set.
         kaArray_tag* temporary = ramp(kLarge, c.index(), 2).release();
         temporary->refCount = 0;
         temporary->flags |= matrix::flags::temporary;
         const ka::ArrayPtr b = ramp(kLarge, i, -1);
         const ka::ArrayPtr r = c.call("plus", {temporary, b.get()});
         c.expect(r.get() == temporary, "large plus: the temporary did not become the result");
         std::vector<double> expected(kLarge);
         for (std::size_t k = 0; k < kLarge; ++k) expected[k] = c.index() + double(k) + i;
         c.expectValues(r.get(), kaDOUBLE_CLASS, {1, kLarge}, expected, "large plus in place");
     }},
    {"broadcast of a column and a row", 0,
     [](Caller& c, int i) {
         std::vector<double> columnValues(30);
         for (std::size_t k = 0; k < 30; ++k) columnValues[k] = double(i % 50) + double(k);
         const ka::ArrayPtr column = ka::createFrom<double>({30, 1}, columnValues),
                            row = ramp(40, 0, 100);
         std::vector<double> expected(30 * 40);
         for (std::size_t j = 0; j < 40; ++j)
             for (std::size_t k = 0; k < 30; ++k)
                 expected[k + 30 * j] = double(i % 50) + double(k) + 100.0 * double(j);
         c.expectValues(c.call("plus", {column.get(), row.get()}).get(), kaDOUBLE_CLASS, {30, 40},
                        expected, "broadcast");
     }},
    {"large sqrt", 0,
     [](Caller& c, int i) {
         std::vector<double> squares(kLarge), roots(kLarge);
         for (std::size_t k = 0; k < kLarge; ++k) {
             roots[k] = double((k + static_cast<std::size_t>(i)) % 64);
             squares[k] = roots[k] * roots[k];
         }
         const ka::ArrayPtr a = ka::createFrom<double>({1, kLarge}, squares);
         c.expectValues(c.call("sqrt", {a.get()}).get(), kaDOUBLE_CLASS, {1, kLarge}, roots,
                        "large sqrt");
     }},
    {"sqrt that warns", 1,
     [](Caller& c, int i) {
         const double x = i % 10;
         const ka::ArrayPtr a = ka::row({x * x, -1.0, 9.0});
         c.expectValues(c.call("sqrt", {a.get()}).get(), kaDOUBLE_CLASS, {1, 3}, {x, NAN, 3},
                        "sqrt");
     }},
    {"inv of 0", 0,
     [](Caller& c, int) {
         const ka::ArrayPtr zero = ka::scalar(0.0);
         try {
             c.call("inv", {zero.get()});
             c.fail("inv(0) returned");
         } catch (const std::domain_error& e) {
             c.expect(std::string(e.what()) == "inv: the inverse of 0 does not exist",
                      std::string("inv(0): ") + e.what());
         }
         c.expect(zero->refCount == 1, "inv(0): the input's count changed");
     }},
    {"inv", 0,
     [](Caller& c, int i) {
         const ka::ArrayPtr x = ka::scalar(double(i % 8 + 1));
         c.expectValues(c.call("inv", {x.get()}).get(), kaDOUBLE_CLASS, {1, 1}, {1.0 / (i % 8 + 1)},
                        "inv");
     }},
    {"an object made and read", 0,
     [](Caller& c, int i) {
         const ka::ArrayPtr start = ka::scalar(double(i));
         const ka::ArrayPtr counter = c.call("counter", {start.get()});
         c.expect(ka::objectClassName(counter.get()) == "Counter", "counter: not a Counter");
         c.expectValues(c.call("count", {counter.get()}).get(), kaDOUBLE_CLASS, {1, 1}, {double(i)},
                        "count");
     }},
};
constexpr int kRoadCount = static_cast<int>(std::size(kRoads));

void runCalls(Caller& c, std::vector<long>& roadCalls) {
    for (int i = 0; i < kCallsPerThread; ++i) {
        // Each thread walks the roads from its own place, so that different roads meet.
        const int r = (i + c.index() * 3) % kRoadCount;
        const Road& road = kRoads[r];
        try {
            road.run(c, i);
        } catch (const std::exception& e) {
            c.fail(std::string(road.name) + " threw " + e.what());
        }
        ++roadCalls[static_cast<std::size_t>(r)];
        const std::vector<std::u16string> warnings = c.takeWarnings();
        const bool ownWarnings =
            static_cast<int>(warnings.size()) == road.warnings &&
            std::all_of(warnings.begin(), warnings.end(),
                        [](const std::u16string& w) { return w == kSqrtWarning; });
        if (!ownWarnings) {
            c.fail(std::string(road.name) + " brought " + std::to_string(warnings.size()) +
                   " warnings, not " + std::to_string(road.warnings));
        }
    }
}

// Stores manifests of four classes each, under names of its own, and reads every class back;
// puts the class system's own entry for Counter in again, which the object road looks up; and
// tries a manifest that conflicts with it, which must change nothing.
struct ManifestWriter {
    long manifests = 0;
    long failures = 0;
    std::string firstFailure;

    void fail(std::string what) {
        if (failures++ == 0) firstFailure = std::move(what);
    }

    static std::string mangled(const std::string& ns, const std::string& name) {
        return "N" + std::to_string(ns.size()) + ns + std::to_string(name.size()) + name + "E";
    }

    void runUntil(const std::atomic<bool>& done) {
        using cppmicroservices::AnyMap;
        const AnyMap counter{{mangled("classbundle", "Counter"),
                              AnyMap{{"kaClassName", std::string("Counter")}, {"variantId", 0}}}};
        const AnyMap conflict{{mangled("classbundle", "Counter"),
                               AnyMap{{"kaClassName", std::string("Counter")}, {"variantId", 1}}}};
        do {
            const std::string ns = "stress" + std::to_string(manifests);
            AnyMap manifest;
            std::unordered_set<std::string> names;
            for (int k = 0; k < 4; ++k) {
                const std::string kaClassName =
                    "Stress" + std::to_string(manifests % 5) + "_" + std::to_string(k);
                manifest[mangled(ns, "C" + std::to_string(k))] =
                    AnyMap{{"kaClassName", kaClassName}, {"variantId", k}};
                names.insert(kaClassName);
            }
            try {
                if (types::addOrroObjectRuntimeInfo(manifest) != names)
                    fail(ns + ": other class names");
                for (int k = 0; k < 4; ++k) {
                    const auto info =
                        types::getOrroObjectRuntimeInfo(ns + "::C" + std::to_string(k));
                    if (info.variantId != static_cast<std::size_t>(k) ||
                        info.kaClassName !=
                            "Stress" + std::to_string(manifests % 5) + "_" + std::to_string(k)) {
                        fail(ns + ": read back other information");
                    }
                }
                if (types::addOrroObjectRuntimeInfo(counter) !=
                    std::unordered_set<std::string>{"Counter"}) {
                    fail("Counter: other class names");
                }
            } catch (const std::exception& e) {
                fail(ns + ": " + e.what());
            }
            try {
                types::addOrroObjectRuntimeInfo(conflict);
                fail("a conflicting Counter was stored");
            } catch (const types::SaveOrroObjectRuntimeInfoError&) {
            }
            ++manifests;
            std::this_thread::yield();  // lets the callers' lookups at the lock
        } while (!done);
    }
};

class Stress : public ::testing::Test {
protected:
    static void SetUpTestSuite() { directory_ = testsupport::startModules(); }
    static void TearDownTestSuite() { directory_.reset(); }

    static inline std::unique_ptr<declare::ModuleDirectory> directory_;
};

TEST_F(Stress, ThreadsCallEveryRoadWhileManifestsAreAdded) {
    // A warning that reaches no thread's scope ends here: it went astray.
    std::atomic<long> stray{0};
    const ka::WarningHandler previous =
        ka::setWarningHandler([&](const std::u16string&) { ++stray; });
    const std::size_t liveAtStart = ka::liveArrayCount();
    const long countersAtStart = classbundle::Counter::liveCounters();

    std::vector<std::vector<long>> roadCalls(kCallThreads, std::vector<long>(kRoadCount));
    std::vector<long> failures(kCallThreads);
    std::vector<std::string> firstFailures(kCallThreads);
    std::latch ready(kCallThreads + 1);
    std::atomic<bool> done{false};
    ManifestWriter writer;

    const auto started = std::chrono::steady_clock::now();
    std::vector<std::thread> threads;
    for (int t = 0; t < kCallThreads; ++t) {
        threads.emplace_back([&, t] {
            Caller caller(*directory_, t);
            ready.arrive_and_wait();
            runCalls(caller, roadCalls[static_cast<std::size_t>(t)]);
            failures[static_cast<std::size_t>(t)] = caller.failures();
            firstFailures[static_cast<std::size_t>(t)] = caller.firstFailure();
        });
    }
    std::thread manifestThread([&] {
        ready.arrive_and_wait();
        writer.runUntil(done);
    });
    for (std::thread& thread : threads) thread.join();
    done = true;
    manifestThread.join();
    const double seconds =
        std::chrono::duration<double>(std::chrono::steady_clock::now() - started).count();
    ka::setWarningHandler(previous);

    for (int t = 0; t < kCallThreads; ++t) {
        EXPECT_EQ(failures[static_cast<std::size_t>(t)], 0)
            << firstFailures[static_cast<std::size_t>(t)];
        for (int r = 0; r < kRoadCount; ++r) {
            EXPECT_GT(roadCalls[static_cast<std::size_t>(t)][static_cast<std::size_t>(r)], 0)
                << kRoads[r].name;
        }
    }
    EXPECT_EQ(stray.load(), 0) << "warnings that reached no calling thread";
    EXPECT_EQ(writer.failures, 0) << writer.firstFailure;
    EXPECT_GT(writer.manifests, 0);
    EXPECT_EQ(ka::liveArrayCount(), liveAtStart) << "arrays left alive or destroyed twice";
    EXPECT_EQ(classbundle::Counter::liveCounters(), countersAtStart);
    std::printf("%d threads x %d calls in %.1f s, %ld manifests stored meanwhile\n", kCallThreads,
                kCallsPerThread, seconds, writer.manifests);
}

}  // namespace
