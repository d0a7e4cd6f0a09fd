#include "resources/Resources.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <fstream>
#include <iterator>
#include <set>
#include <string>

namespace {

std::string fileContents(const std::string& name) {
    std::ifstream file(name, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), {}};
}

} // namespace

TEST(Resources, areTheBytesOfTheirFiles) {
    const auto bank = Resources::find(Resources::Type::fxb, "factorybank");
    ASSERT_TRUE(bank.has_value());
    EXPECT_EQ(*bank, fileContents(MURMELON_BUILD "/resources/factorybank.fxb"));
    EXPECT_GT(bank->size(), 900U);
}

TEST(Resources, areFoundInAnyCaseWithinTheirType) {
    const auto bank = Resources::find(Resources::Type::fxb, "FactoryBANK");
    ASSERT_TRUE(bank.has_value());
    EXPECT_EQ(bank->data(), Resources::find(Resources::Type::fxb, "factorybank")->data());
    EXPECT_FALSE(Resources::find(Resources::Type::png, "factorybank").has_value());
    EXPECT_FALSE(Resources::find(Resources::Type::fxb, "factoryban").has_value());
    EXPECT_FALSE(Resources::find(Resources::Type::fxb, "").has_value());
}

TEST(Resources, theListHoldsEachOnceAlignedAndWithItsEndMarked) {
    std::set<std::pair<Resources::Type, std::string>> seen;
    for (const Resources::Resource& resource : Resources::all()) {
        EXPECT_TRUE(seen.emplace(resource.type, resource.name).second) << resource.name;
        EXPECT_EQ(Resources::find(resource.type, resource.name)->data(), resource.bytes.data());
        EXPECT_EQ(reinterpret_cast<std::uintptr_t>(resource.bytes.data()) % 16, 0U) << resource.name;
        EXPECT_EQ(resource.bytes.data()[resource.bytes.size()], '\0') << resource.name;
    }
    EXPECT_TRUE(seen.contains({Resources::Type::fxb, "factorybank"}));
}
