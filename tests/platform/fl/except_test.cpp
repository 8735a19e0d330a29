#include <fl/except.hpp>

#include <boost/exception/diagnostic_information.hpp>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using namespace foundation::core::except;

struct twoHoles : MessageId {
  twoHoles(std::u16string a, std::u16string b)
      : MessageId{"TEST:catalog", "twoHoles", {std::move(a), std::move(b)}} {}
};

using TwoHolesError = Exception<twoHoles, std::exception, void>;

TEST(MessageIdException, IsCaughtThroughEveryBase) {
  auto raise = [] { throw TwoHolesError(twoHoles(u"x", u"y")); };
  EXPECT_THROW(raise(), IMsgIDException);
  EXPECT_THROW(raise(), IUserException);
  EXPECT_THROW(raise(), IException);
  EXPECT_THROW(raise(), boost::exception);
  EXPECT_THROW(raise(), std::exception);
}

TEST(MessageIdException, CarriesItsIdAndArgumentsAndNamesTheIdInWhat) {
  try {
    throw TwoHolesError(twoHoles(u"first", u"second"));
  } catch (const IMsgIDException& e) {
    EXPECT_EQ(e.message_id().catalog, "TEST:catalog");
    EXPECT_EQ(e.message_id().key, "twoHoles");
    EXPECT_EQ(e.message_id().arguments, (std::vector<std::u16string>{u"first", u"second"}));
    EXPECT_STREQ(dynamic_cast<const std::exception&>(e).what(), "TEST:catalog:twoHoles");
    EXPECT_EQ(IMsgIDException::get_error_id(e.message_id()), "TEST:catalog:twoHoles");
  }
}

TEST(MessageIdException, TakesAnyStandardBase) {
  // std::runtime_error needs a text; the template forwards nothing to it, so the base is
  // default-constructible only when the standard type is. std::exception is the common case.
  static_assert(std::is_base_of_v<std::exception, TwoHolesError>);
  static_assert(std::is_base_of_v<IMsgIDException, TwoHolesError>);
}

}  // namespace
