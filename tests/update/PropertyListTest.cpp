#include "update/PropertyList.h"
#include "update/AppBundle.h"

#include "UpdateTestSupport.h"

#include <gtest/gtest.h>

using namespace cuewright;

TEST(PropertyList, readsTopLevelStringsAndSkipsOtherValues)
{
    const auto strings = PropertyList::parseStrings(R"(<?xml version="1.0" encoding="UTF-8"?>
<!DOCTYPE plist PUBLIC "-//Apple//DTD PLIST 1.0//EN" "http://www.apple.com/DTDs/PropertyList-1.0.dtd">
<!-- a comment before the root -->
<plist version="1.0">
<dict>
  <key>CFBundleIdentifier</key>
  <string>com.vantrel.cuewright</string>
  <key>Nested</key>
  <dict><key>CFBundleShortVersionString</key><string>6.6</string><key>a</key><array><string>x</string></array></dict>
  <key>Number</key><integer>3</integer>
  <key>Flag</key><true/>
  <key>Empty</key><string/>
  <key>Escaped</key><string>Tom &amp; &#x2019;Jerry&#8217; &lt;3 <![CDATA[<raw>]]><!-- gone --></string>
  <key>CFBundleShortVersionString</key>
  <string> 2.0 </string>
</dict>
</plist>
)");
    ASSERT_TRUE(strings);
    EXPECT_EQ(*strings,
        (std::map<std::string, std::string> { { "CFBundleIdentifier", "com.vantrel.cuewright" }, { "Empty", "" },
            { "Escaped", "Tom & \u2019Jerry\u2019 <3 <raw>" }, { "CFBundleShortVersionString", " 2.0 " } }));
}

TEST(PropertyList, refusesMalformedDocuments)
{
    for (const char* xml : {
             "",
             "<dict><key>a</key><string>b</string></dict>",
             "<plist><array><string>b</string></array></plist>",
             "<plist><dict><key>a</key><string>b</string></plist>",
             "<plist><dict><key>a</key><string>b</dict></plist>",
             "<plist><dict><key>a</key></dict></plist>",
             "<plist><dict><string>b</string></dict></plist>",
             "<plist><dict><key>a</key><string>b<i/></string></dict></plist>",
             "<plist><dict><key>a</key><string>&bogus;</string></dict></plist>",
             "<plist><dict><key>a</key><string>&#0;</string></dict></plist>",
             "<plist><dict><key>a</key><string>1</string><key>a</key><string>2</string></dict></plist>",
             "<plist><dict></dict></plist><plist/>",
             "<plist><dict><key>a</key><dict><key>b</key></array></dict></dict></plist>",
         })
        EXPECT_FALSE(PropertyList::parseStrings(xml)) << xml;
    EXPECT_TRUE(PropertyList::parseStrings("\xEF\xBB\xBF<plist><dict/></plist>"));
}

TEST(AppBundle, findsTheBundleAboveAFileAndFallsBackToTheDefaultVersion)
{
    test::ScratchFolder scratch;
    const auto bundle = scratch.path() / "My Apps" / "Cuewright.app";
    test::makeBundle(bundle, "com.vantrel.cuewright", "3.1", "x", scratch.path() / "marker");
    EXPECT_EQ(AppBundle::containing(bundle / "Contents" / "bin" / "cuewright"), bundle);
    EXPECT_EQ(AppBundle::identifier(bundle), "com.vantrel.cuewright");
    EXPECT_FALSE(AppBundle::containing(scratch.path() / "My Apps" / "loose"));
    // The test program lives in no bundle.
    EXPECT_EQ(AppBundle::version(), "1.0.0");
}
