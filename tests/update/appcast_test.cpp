#include <gtest/gtest.h>

#include "update/Appcast.h"

namespace orlet {
namespace {

const std::string signature = std::string(86, 'A') + "==";  // 64 zero bytes

std::string feed(const std::string& items) {
  return R"(<?xml version="1.0" encoding="utf-8"?>
<rss version="2.0" xmlns:sparkle="http://www.andymatuschak.org/xml-namespaces/sparkle">
<channel><title>ORLET</title>)" +
         items + "</channel></rss>";
}

std::string item(const std::string& inner, const std::string& enclosure) {
  return "<item><title>t</title>" + inner + "<enclosure " + enclosure + "/></item>";
}

std::string goodEnclosure(const std::string& extra = {}) {
  return R"(url="https://example.org/orlet-1.2.tar.gz" length="1234" type="application/gzip" )"
         R"(sparkle:edSignature=")" +
         signature + "\" " + extra;
}

TEST(AppcastParsing, ReadsEveryFieldOfAWellFormedItem) {
  const auto parsed = parseAppcast(
      feed(item("<sparkle:version>1.2.0</sparkle:version>"
                "<sparkle:shortVersionString>1.2</sparkle:shortVersionString>"
                "<sparkle:minimumSystemVersion>12</sparkle:minimumSystemVersion>"
                "<sparkle:releaseNotesLink>https://example.org/notes</sparkle:releaseNotesLink>"
                "<description><![CDATA[<p>Plus rapide</p>]]></description>",
                goodEnclosure())));
  ASSERT_TRUE(parsed.error.empty()) << parsed.error;
  ASSERT_EQ(parsed.items.size(), 1u);
  const auto& i = parsed.items[0];
  EXPECT_EQ(i.version, "1.2.0");
  EXPECT_EQ(i.displayVersion(), "1.2");
  EXPECT_EQ(i.minimumSystemVersion, "12");
  EXPECT_EQ(i.releaseNotesLink, "https://example.org/notes");
  EXPECT_EQ(i.description, "<p>Plus rapide</p>");
  EXPECT_EQ(i.url, "https://example.org/orlet-1.2.tar.gz");
  EXPECT_EQ(i.length, 1234u);
  EXPECT_EQ(i.type, "application/gzip");
  EXPECT_EQ(i.edSignature, std::vector<unsigned char>(64, 0));
}

TEST(AppcastParsing, VersionOnTheEnclosureCountsAndAnUnsignedItemIsKeptUnsigned) {
  const auto parsed = parseAppcast(
      feed(item("", R"(url="https://e.org/a" length="5" type="t" sparkle:version="3.1")")));
  ASSERT_EQ(parsed.items.size(), 1u);
  EXPECT_EQ(parsed.items[0].version, "3.1");
  EXPECT_TRUE(parsed.items[0].edSignature.empty());
}

TEST(AppcastParsing, RejectsMalformedItemsWholeAndKeepsTheOthers) {
  const std::string version = "<sparkle:version>2.0</sparkle:version>";
  const std::pair<const char*, std::string> malformed[] = {
      {"no version", item("", goodEnclosure())},
      {"empty version", item("<sparkle:version> </sparkle:version>", goodEnclosure())},
      {"version with a path", item("<sparkle:version>../2</sparkle:version>", goodEnclosure())},
      {"two versions", item(version + version, goodEnclosure())},
      {"no enclosure", "<item>" + version + "</item>"},
      {"two enclosures", item(version + "<enclosure " + goodEnclosure() + "/>", goodEnclosure())},
      {"plain http", item(version, R"(url="http://e.org/a" length="5" type="t")")},
      {"no length", item(version, R"(url="https://e.org/a" type="t")")},
      {"zero length", item(version, R"(url="https://e.org/a" length="0" type="t")")},
      {"negative length", item(version, R"(url="https://e.org/a" length="-5" type="t")")},
      {"length with a unit", item(version, R"(url="https://e.org/a" length="5kB" type="t")")},
      {"longer than any archive of ours",
       item(version, R"(url="https://e.org/a" length="268435457" type="t")")},
      {"huge length",
       item(version, R"(url="https://e.org/a" length="99999999999999999999" type="t")")},
      {"no type", item(version, R"(url="https://e.org/a" length="5")")},
      {"short signature",
       item(version, R"(url="https://e.org/a" length="5" type="t" sparkle:edSignature="AAAA")")},
      {"signature not base64",
       item(version, R"(url="https://e.org/a" length="5" type="t" sparkle:edSignature="*")")},
      {"empty short version", item(version + "<sparkle:shortVersionString/>", goodEnclosure())},
      {"unusable minimum system",
       item(version + "<sparkle:minimumSystemVersion>x</sparkle:minimumSystemVersion>",
            goodEnclosure())},
  };
  const std::string good = item("<sparkle:version>1.5</sparkle:version>", goodEnclosure());
  for (const auto& [why, bad] : malformed) {
    const auto parsed = parseAppcast(feed(good + bad));
    EXPECT_TRUE(parsed.error.empty()) << why;
    ASSERT_EQ(parsed.items.size(), 1u) << why;
    EXPECT_EQ(parsed.items[0].version, "1.5") << why;
    EXPECT_EQ(parsed.rejected.size(), 1u) << why;
  }
}

TEST(AppcastParsing, AnUnusableDocumentGivesNoItems) {
  const std::string good = item("<sparkle:version>1.5</sparkle:version>", goodEnclosure());
  const std::pair<const char*, std::string> documents[] = {
      {"empty", ""},
      {"truncated", feed(good).substr(0, 200)},
      {"not rss", "<html><body>404</body></html>"},
      {"no channel", "<rss version=\"2.0\">" + good + "</rss>"},
      {"entity declarations",
       "<!DOCTYPE rss [<!ENTITY a \"aaaa\">]><rss><channel>" + good + "</channel></rss>"},
      {"undeclared prefix", "<rss><channel><x:item/></channel></rss>"},
  };
  for (const auto& [why, document] : documents) {
    const auto parsed = parseAppcast(document);
    EXPECT_FALSE(parsed.error.empty()) << why;
    EXPECT_TRUE(parsed.items.empty()) << why;
  }
}

AppcastItem release(std::string version, std::string minimumSystem = {},
                    std::string type = "application/gzip") {
  AppcastItem i;
  i.version = std::move(version);
  i.minimumSystemVersion = std::move(minimumSystem);
  i.type = std::move(type);
  return i;
}

TEST(UpdateSelection, TakesTheNewestNewerItemThatFitsTheSystemAndTheInstallation) {
  const std::vector<AppcastItem> items{release("1.1"), release("1.3b1"), release("1.2"),
                                       release("1.4", "13"),
                                       release("1.5", {}, "application/vnd.debian.binary-package")};
  EXPECT_EQ(selectUpdate(items, "1.0", "12", "application/gzip")->version, "1.3b1");
  EXPECT_EQ(selectUpdate(items, "1.0", "13", "application/gzip")->version, "1.4");
  EXPECT_EQ(selectUpdate(items, "1.0", "", "application/gzip")->version, "1.4");
  EXPECT_EQ(selectUpdate(items, "1.0", "12", "application/vnd.debian.binary-package")->version,
            "1.5");
  EXPECT_FALSE(selectUpdate(items, "1.3", "12", "application/gzip"));
  EXPECT_FALSE(selectUpdate(items, "2.0", "13", "application/gzip"));
}

}  // namespace
}  // namespace orlet
