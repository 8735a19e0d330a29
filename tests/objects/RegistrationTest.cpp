// Registration of object types and package functions, and the class provider's answers, with strict
// mock services present as BUILTIN_TEST_SERVICES says ("provider", "register", "none"; both when
// unset).
#include <builtin/calling/ParameterConversion.hpp>
#include <builtin/objects/objects.hpp>
#include <builtin/services/services.hpp>
#include <builtin/types/ClassifyKaArray.hpp>

#include <engine/OrroObject.hpp>
#include <foundation/cppmicroservices/framework.hpp>
#include <foundation/log/test/memory_sink.hpp>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdlib>
#include <filesystem>
#include <stdexcept>
#include <string>
#include <vector>

#include "../services/ServiceDoubles.hpp"

namespace {

using namespace Norvane::builtin;
using Norvane::orro::OrroObject;
using testing::_;
using testing::Return;
using testing::StrictMock;
using Texts = std::vector<std::string>;

bool hasService(const char* name) {
    const char* services = std::getenv("BUILTIN_TEST_SERVICES");
    return services == nullptr || std::string(services).find(name) != std::string::npos;
}
const bool withProvider = hasService("provider");
const bool withRegister = hasService("register");

class MockClassProvider : public IZOBJRegWrapper {
public:
    MOCK_METHOD(std::string, getClassName, (kaClassID), (const, override));
    MOCK_METHOD(void, registerPackageFunction,
                (const std::vector<std::string>&, const std::string&, Zfh_KELDOR_fn*), (override));
    MOCK_METHOD(kaClassID, getClassIdByName, (const std::string&), (const, override));
    MOCK_METHOD(OrroObject&, fromKaArray, (const kaArray_tag*, bool), (const, override));
    MOCK_METHOD(OwnedArray, toKaArray, (OrroObject*, unsigned), (const, override));
    MOCK_METHOD(OwnedArray, toKaArray, (boost::intrusive_ptr<const OrroObject>&&, const char*),
                (const, override));
    MOCK_METHOD(kaClassID, getClassId, (const kaArray_tag*), (const, override));
    MOCK_METHOD(std::size_t, getVariantId, (const kaArray_tag*), (const, override));
    MOCK_METHOD(const ts::iTypeExpression*, getOrroObjectType, (kaClassID, std::size_t),
                (const, override));
    MOCK_METHOD(bool, getObjectTypeFlag, (const kaArray_tag*), (const, override));
    MOCK_METHOD(void, setZfhFinder, (std::string, ZfhFinder), (override));
    MOCK_METHOD(void, addMethod,
                (zobj::ZobjClass*, const std::string&, const std::string&,
                 const zobj::MemberAccess&, bool, bool, bool),
                (override));
};

class MockObjectRegister : public IOrroObjectRegister {
public:
    MOCK_METHOD(bool, isOrroObjectRegistered, (kaClassID, std::size_t), (const, override));
    MOCK_METHOD(void, registerOrroObject, (kaClassID, std::size_t, bool), (override));
    MOCK_METHOD(void, registerOrroObject, (kaClassID, std::size_t), (override));
    MOCK_METHOD(void, registerOrroObjectDefaultIndexingMethods,
                (kaClassID, std::size_t, bool,
                 const Norvane::orro::OrroObjectDefaultIndexingMethods&),
                (override));
    MOCK_METHOD(void, registerParenReferenceVariant,
                (kaClassID, std::size_t, const OrroFunctionDescriptor&,
                 const OrroFunctionDescriptor&, std::string, NameRange),
                (override));
    MOCK_METHOD(void, registerParenAssignVariant,
                (kaClassID, std::size_t, const OrroFunctionDescriptor&,
                 const OrroFunctionDescriptor&, std::string, NameRange, bool),
                (override));
};

// Log records on one channel, all at severity 256.
struct ChannelRecords {
    explicit ChannelRecords(const std::string& channel) : mask(channel, 256), sink(channel) {}
    Texts texts() const {
        for (const auto& record : sink.records()) EXPECT_EQ(record.severity, 256u);
        return sink.texts();
    }
    foundation::log::test::scoped_channel_mask mask;
    foundation::log::test::memory_sink sink;
};

class Registration : public ::testing::Test {
protected:
    static void SetUpTestSuite() {
        // An installation root without bundles: the services are the mocks.
        root_ = (std::filesystem::temp_directory_path() / "registration-root-XXXXXX").string();
        ASSERT_NE(mkdtemp(root_.data()), nullptr);
        ASSERT_EQ(setenv("KELDOR_INSTALL_ROOT", root_.c_str(), 1), 0);
        foundation::cppmicroservices::createFramework();
        if (withProvider) servicedoubles::registerDouble<IZOBJRegWrapper>(unowned(provider_));
        if (withRegister) servicedoubles::registerDouble<IOrroObjectRegister>(unowned(register_));
    }
    // The holders keep their services to the end of the process: the mocks are never destroyed.
    template <class T>
    static std::shared_ptr<T> unowned(T* mock) {
        testing::Mock::AllowLeak(mock);
        return std::shared_ptr<T>(mock, [](T*) {});
    }
    static void TearDownTestSuite() { std::filesystem::remove_all(root_); }
    void TearDown() override {
        testing::Mock::VerifyAndClearExpectations(provider_);
        testing::Mock::VerifyAndClearExpectations(register_);
    }

    // The record of a registration skipped for missing services.
    static std::string missingServices(const std::string& action) {
        return "Unable to " + action +
               ", Details:" + (withProvider ? "" : " zobj Reg Service not available.") +
               (withRegister ? "" : " orroRegService not available.");
    }

    static inline std::string root_;
    static inline auto* const provider_ = new StrictMock<MockClassProvider>;
    static inline auto* const register_ = new StrictMock<MockObjectRegister>;
};

constexpr auto knownClass = static_cast<kaClassID>(40);

TEST_F(Registration, EachHelperReachesItsOperationOrLogsWhyNot) {
    const ChannelRecords records("builtinservice::registerOrroObject");
    const OrroFunctionDescriptor first{}, second{};
    std::string names[] = {"a", "b"};
    const boost::iterator_range<std::string*> range(std::begin(names), std::end(names));
    const auto& methods =
        *reinterpret_cast<const Norvane::orro::OrroObjectDefaultIndexingMethods*>(&first);
    if (withProvider && withRegister) {
        EXPECT_CALL(*provider_, getClassIdByName("Known"))
            .Times(6)
            .WillRepeatedly(Return(knownClass));
        // Repeats are not filtered; the two forms reach two operations.
        EXPECT_CALL(*register_, registerOrroObject(knownClass, 3)).Times(2);
        EXPECT_CALL(*register_, registerOrroObject(knownClass, 3, true));
        EXPECT_CALL(*register_, registerOrroObjectDefaultIndexingMethods(knownClass, 3, false,
                                                                         testing::Ref(methods)));
        EXPECT_CALL(*register_,
                    registerParenReferenceVariant(knownClass, 3, testing::Ref(first),
                                                  testing::Ref(second), "subsref", range));
        EXPECT_CALL(*register_,
                    registerParenAssignVariant(knownClass, 3, testing::Ref(first),
                                               testing::Ref(second), "subsasgn", range, true));
    }
    EXPECT_FALSE(builtinreg::isAKnownOrroObject(knownClass));
    builtinreg::registerOrroObjectHelper("Known", 3);
    EXPECT_EQ(builtinreg::isAKnownOrroObject(knownClass), withProvider && withRegister);
    builtinreg::registerOrroObjectHelper("Known", 3);
    builtinreg::registerOrroObjectHelper("Known", 3, true);
    builtinreg::registerOrroObjectDefaultIndexingMethodsHelper("Known", 3, false, methods);
    builtinreg::registerParenReferenceVariant("Known", 3, first, second, "subsref", range);
    builtinreg::registerParenAssignVariant("Known", 3, first, second, "subsasgn", range, true);

    const Texts missing = {
        missingServices("register OrroObjects"),
        missingServices("register OrroObjects"),
        missingServices("register OrroObjects"),
        missingServices("register OrroObject default indexing methods"),
        missingServices("register OrroObject optimized ParenReference indexing method"),
        missingServices("register OrroObject optimized ParenAssign indexing method")};
    EXPECT_EQ(records.texts(), withProvider && withRegister ? Texts{} : missing);
}

TEST_F(Registration, AnUnknownClassIsLeftOutAndAFailingRegisterLeavesTheClassKnown) {
    if (!(withProvider && withRegister)) GTEST_SKIP() << "needs both services";
    const ChannelRecords records("builtinservice::registerOrroObject");
    EXPECT_CALL(*provider_, getClassIdByName("Unknown")).WillOnce(Return(kaUNKNOWN_CLASS));
    builtinreg::registerOrroObjectHelper("Unknown", 0);
    EXPECT_EQ(records.texts(),
              Texts{"Unable to register OrroObjects, Details: unknown class 'Unknown'"});
    EXPECT_FALSE(builtinreg::isAKnownOrroObject(kaUNKNOWN_CLASS));

    const auto failing = static_cast<kaClassID>(41);
    EXPECT_CALL(*provider_, getClassIdByName("Failing")).WillOnce(Return(failing));
    EXPECT_CALL(*register_, registerOrroObject(failing, 0))
        .WillOnce(testing::Throw(std::runtime_error("refused")));
    EXPECT_THROW(builtinreg::registerOrroObjectHelper("Failing", 0), std::runtime_error);
    EXPECT_TRUE(builtinreg::isAKnownOrroObject(failing));
}

TEST_F(Registration, PackageFunctionsGoToTheProviderOrAreLogged) {
    const ChannelRecords records("builtinservice::registerpkgfcn");
    int stand = 0;  // its address stands for the function object
    auto* function = reinterpret_cast<Zfh_KELDOR_fn*>(&stand);
    if (withProvider) {
        EXPECT_CALL(*provider_, registerPackageFunction(Texts{"a", "b"}, "f", function));
        EXPECT_CALL(*provider_, registerPackageFunction(Texts{}, "f", function));
    }
    builtinreg::registerPackageFunctionHelper({"a", "b"}, "f", function);
    builtinreg::registerPackageFunctionHelper({}, "f", function);
    const Texts missing = {
        "Unable to register a.b.f because IZOBJRegWrapper cppmicroservice could not be found.",
        "Unable to register .f because IZOBJRegWrapper cppmicroservice could not be found."};
    EXPECT_EQ(records.texts(), withProvider ? Texts{} : missing);
}

// Without the provider, each answer's fallback; with it, the provider's own.
TEST_F(Registration, IdentitiesAndObjectsWithOrWithoutTheProvider) {
    if (withProvider) {
        const auto* typeExpression = reinterpret_cast<const ts::iTypeExpression*>(&root_);
        EXPECT_CALL(*provider_, getClassIdByName("Known")).WillOnce(Return(knownClass));
        EXPECT_CALL(*provider_, getOrroObjectType(knownClass, 2)).WillOnce(Return(typeExpression));
        EXPECT_EQ(builtinreg::getClassIdByName("Known"), knownClass);
        EXPECT_EQ(builtinreg::getOrroObjectType(knownClass, 2), typeExpression);
    } else {
        EXPECT_EQ(builtinreg::getClassIdByName("Known"), kaUNKNOWN_CLASS);
        EXPECT_EQ(builtinreg::getOrroObjectType(knownClass, 2), nullptr);

        const boost::intrusive_ptr<const OrroObject> object(new OrroObject);
        boost::intrusive_ptr<const OrroObject> kept = object;
        EXPECT_EQ(orroobject::toKaArray(std::move(kept), "t"), nullptr);
        EXPECT_EQ(kept, object);
        EXPECT_THAT([] { orroobject::fromKaArray(nullptr); },
                    testing::ThrowsMessage<std::runtime_error>(
                        testing::StrEq("Cannot get OrroObject runtime provider service")));
        EXPECT_THROW(orroobject::setZfhFinder("x", {}), std::runtime_error);
    }
    // A null object boxes to a null array without asking the provider.
    kaArray_tag* out = reinterpret_cast<kaArray_tag*>(&root_);
    builtinreg::detail::parameterConversionImpl(&out, static_cast<OrroObject*>(nullptr));
    EXPECT_EQ(out, nullptr);
    EXPECT_EQ(orroobject::getGuid("Cls", "m"), "Cls-m#");
    EXPECT_EQ(orroobject::getGuid("", ""), "-#");
}

}  // namespace
