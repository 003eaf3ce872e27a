#include "NimbuscopeKit/Preferences/PreferencesServiceImpl.hpp"

#include <gtest/gtest.h>

#include "Platform/Coding/JSONEncoder.hpp"
#include "tests/support/FailingUserDefaults.hpp"
#include "tests/support/FixedLocale.hpp"
#include "tests/support/InMemoryUserDefaults.hpp"

namespace nimbuscope {
namespace {

using platform::Data;
using platform::dataOf;
using platform::DefaultsValue;

constexpr std::string_view newInstallation =
    R"({"version":12,"main":{"isRatingEnabled":true,"launchesCount":1,"isAutoplayEnabled":false,)"
    R"("isOpenMapOnLaunchEnabled":true,"isShowAIInsights":true,"isHapticEnabled":true,)"
    R"("isNeedSendStartupPush":true},"notifications":{},"layer":{"colorScheme":4,"overlayType":0,)"
    R"("isPrecipitationDirectionEnabled":true,"isStormsEnabled":false,"isAlertsEnabled":false,)"
    R"("isRecentLayersEnabled":false},"map":{"type":0,"units":1,"legend":{"isLegendEnabled":true,)"
    R"("tooltipType":0}},"radar":{"isEnhancedColorsEnabled":true,"isSmoothRadarEnabled":true,)"
    R"("isCoverageEnabled":false,"isDynamicOpacityEnabled":true,"overlayOpacity":80,"minimalIntensity":15}})";

class RecordedErrors final : public ErrorTrackingService {
  public:
    void track(const platform::NSError& error) override { errors.push_back(error); }
    [[nodiscard]] std::vector<std::string> domains() const {
        std::vector<std::string> all;
        std::ranges::transform(errors, std::back_inserter(all), &platform::NSError::domain);
        return all;
    }

    std::vector<platform::NSError> errors;
};

/// Does as it is told when preferences change.
class Observer final : public PreferencesServiceObserver {
  public:
    explicit Observer(std::function<void(PreferencesService&)> told) : told_(std::move(told)) {}
    void preferencesDidChange(PreferencesService& service) override { told_(service); }

  private:
    std::function<void(PreferencesService&)> told_;
};

class PreferencesServiceTest : public testing::Test {
  protected:
    [[nodiscard]] PreferencesServiceImpl start() const {
        return {standard, group, errors, std::make_shared<test::FixedLocale>(true)};
    }
    void storeRecord(std::string_view bytes) const {
        ASSERT_TRUE(group->set("isMigrated", true));
        ASSERT_TRUE(group->set(PreferencesServiceImpl::appPreferencesKey, dataOf(bytes)));
    }
    [[nodiscard]] std::string storedRecord() const {
        const auto stored = group->object(PreferencesServiceImpl::appPreferencesKey);
        return std::string(platform::textOf(*stored.value()->as<Data>()));
    }

    test::InMemoryUserDefaults standard;
    std::shared_ptr<test::InMemoryUserDefaults> group = std::make_shared<test::InMemoryUserDefaults>();
    std::shared_ptr<RecordedErrors> errors = std::make_shared<RecordedErrors>();
};

TEST_F(PreferencesServiceTest, AFreshStoreHoldsTheRecordOfANewInstallationAfterTheStart) {
    const auto service = start();
    EXPECT_EQ(storedRecord(), newInstallation);
    EXPECT_EQ(group->object("isMigrated").value(), DefaultsValue(true));
    EXPECT_TRUE(errors->errors.empty());
}

TEST_F(PreferencesServiceTest, CopiesTheStandardStoreOnceOverWhateverIsThere) {
    ASSERT_TRUE(standard.set("nbcOpacity", std::int64_t{55}));
    ASSERT_TRUE(standard.set("isMigrated", false));
    ASSERT_TRUE(group->set("nbcOpacity", std::int64_t{10}));
    ASSERT_TRUE(group->set("isMigrated", std::int64_t{1}));
    EXPECT_EQ(start().preferences().radar.overlayOpacity, 55);
    ASSERT_TRUE(standard.set("nbcOpacity", std::int64_t{60}));
    ASSERT_TRUE(group->removeObject(PreferencesServiceImpl::appPreferencesKey));
    EXPECT_EQ(start().preferences().radar.overlayOpacity, 55);
}

TEST_F(PreferencesServiceTest, MigratesAtTheFirstStartAndTouchesNothingAtTheSecond) {
    storeRecord(R"({"version":3,"layer":{"colorScheme":22},"ads":1.0})");
    static_cast<void>(start());
    const std::string migrated = storedRecord();
    EXPECT_EQ(migrated, R"({"version":12,"layer":{"colorScheme":22,"isAlertsEnabled":false,"ovarlayType":0,)"
                        R"("isRecentLayersEnabled":false},"ads":1.0})");
    const auto readOnly =
        std::make_shared<test::FailingUserDefaults>(group, platform::DefaultsError::Code::readOnly);
    const PreferencesServiceImpl second(standard, readOnly, errors,
                                        std::make_shared<test::FixedLocale>(true));
    EXPECT_TRUE(errors->errors.empty());
    EXPECT_EQ(storedRecord(), migrated);
}

TEST_F(PreferencesServiceTest, AnUnreadableRecordIsReportedAndReplacedByTheOldSettings) {
    const std::string decoding(PreferencesServiceImpl::decodingErrorDomain);
    const std::string version(PreferencesServiceImpl::serviceErrorDomain);
    const struct {
        std::string stored;
        std::vector<std::string> atStart;
        std::string fault;
    } cases[]{
        {"[]", {decoding}, "expected an object, found an array"},
        {R"({"version":13})", {version}, "version: the value is none of the allowed ones"},
        {R"({"version":11,"main":{}})", {}, "main.isRatingEnabled: missing key"},
    };
    ASSERT_TRUE(group->set("nbcOpacity", std::int64_t{55}));
    for (const auto& [stored, atStart, fault] : cases) {
        errors->errors.clear();
        storeRecord(stored);
        auto service = start();
        EXPECT_EQ(errors->domains(), atStart);
        EXPECT_EQ(storedRecord() == stored, !atStart.empty());
        errors->errors.clear();

        testing::internal::CaptureStderr();
        const AppPreferences replacement = service.preferences();
        EXPECT_EQ(testing::internal::GetCapturedStderr(),
                  "    Unable to parse AppPreferences - please check if migrations are correct!\n    \n"
                  " Preferences will be reset to default \n" +
                      fault + "\n");
        EXPECT_EQ(errors->domains(), std::vector{decoding});
        EXPECT_EQ(replacement.radar.overlayOpacity, 55);
        EXPECT_EQ(storedRecord(), platform::JSONEncoder().encode(replacement).value());
        EXPECT_EQ(service.preferences(), replacement);
        EXPECT_EQ(errors->errors.size(), 1U);
    }
}

TEST_F(PreferencesServiceTest, AValueThatIsNoDataCountsAsNone) {
    ASSERT_TRUE(group->set(PreferencesServiceImpl::appPreferencesKey, std::string(newInstallation)));
    EXPECT_EQ(start().preferences(), AppPreferences());
    EXPECT_EQ(storedRecord(), newInstallation);
    EXPECT_TRUE(errors->errors.empty());
}

TEST_F(PreferencesServiceTest, TellsObserversInOrderWhileTheyComeAndGo) {
    auto service = start();
    std::string told;
    std::shared_ptr<Observer> once;
    const auto twice = std::make_shared<Observer>([&](PreferencesService&) { told += 't'; });
    once = std::make_shared<Observer>([&](PreferencesService& preferences) {
        told += 'o';
        preferences.removeObserver(*once);
        preferences.removeObserver(*twice);
        preferences.set(preference::launchesCount{7});
    });
    const auto last = std::make_shared<Observer>([&](PreferencesService& preferences) {
        told += std::to_string(preferences.preferences().main.launchesCount);
    });
    service.addObserver(twice);
    service.addObserver(once);
    service.addObserver(twice);
    service.addObserver(last);
    service.set(preference::isAlertsEnabled{true});
    EXPECT_EQ(told, "to77");
    told.clear();
    service.modifyPreferences([](AppPreferences& preferences) { ++preferences.main.launchesCount; });
    EXPECT_EQ(told, "8");
    EXPECT_TRUE(service.preferences().layer.isAlertsEnabled);
}

TEST_F(PreferencesServiceTest, WhatCannotBeStoredIsReportedAndLeavesTheRecord) {
    using Code = platform::DefaultsError::Code;
    storeRecord(newInstallation);
    for (const Code code : {Code::readOnly, Code::full}) {
        errors->errors.clear();
        const auto failing = std::make_shared<test::FailingUserDefaults>(group, code);
        PreferencesServiceImpl service(standard, failing, errors, std::make_shared<test::FixedLocale>(true));
        service.addObserver(
            std::make_shared<Observer>([](PreferencesService&) { ADD_FAILURE() << "was told"; }));
        service.set(preference::overlayOpacity{5});
        service.setPreferences({});
        ASSERT_EQ(errors->errors.size(), 2U);
        EXPECT_EQ(errors->errors[0].code, static_cast<int>(code));
        EXPECT_EQ(storedRecord(), newInstallation);
        EXPECT_EQ(service.preferences(), AppPreferences());
    }
    auto service = start();
    service.set(preference::pushToken{"\xFF"});
    EXPECT_EQ(errors->errors.back().localizedDescription,
              "notifications.pushToken: the text is not valid UTF-8");
    EXPECT_EQ(storedRecord(), newInstallation);
}

}  // namespace
}  // namespace nimbuscope
