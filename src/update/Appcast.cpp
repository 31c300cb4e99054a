#include "update/Appcast.h"

#include <expat.h>
#include <sodium.h>

#include <algorithm>
#include <cctype>
#include <cstring>
#include <limits>
#include <map>
#include <memory>

#include "update/Version.h"

namespace orlet {

namespace {

constexpr char sparkle[] = "http://www.andymatuschak.org/xml-namespaces/sparkle|";
constexpr std::size_t maxVersionLength = 64;
// Ten times any release of ours; a larger length is a broken feed, not an archive. The download
// is held in memory, up to the length its item announces, until it is verified.
constexpr std::uint64_t maxArchiveLength = 256ull << 20;

std::string trimmed(std::string_view s) {
  const auto space = [](char c) { return std::isspace(static_cast<unsigned char>(c)) != 0; };
  while (!s.empty() && space(s.front())) s.remove_prefix(1);
  while (!s.empty() && space(s.back())) s.remove_suffix(1);
  return std::string(s);
}

// The fields of one <item> as written, before they are checked.
struct RawItem {
  std::map<std::string, std::string> fields;  // element or attribute name -> text
  int enclosures = 0;
  std::vector<std::string> duplicates;
};

std::optional<std::uint64_t> parseLength(const std::string& text) {
  if (text.empty() || text.size() > 19 ||
      !std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
    return std::nullopt;
  const std::uint64_t v = std::stoull(text);
  if (v == 0 || v > maxArchiveLength) return std::nullopt;
  return v;
}

// Versions name folders of the installation: letters, digits and . _ + - ~ only, starting
// with a digit.
bool isVersion(const std::string& v) {
  if (v.empty() || v.size() > maxVersionLength || !std::isdigit(static_cast<unsigned char>(v[0])))
    return false;
  return std::all_of(v.begin(), v.end(), [](char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || (c != '\0' && std::strchr("._+-~", c));
  });
}

bool isHttpsUrl(const std::string& url) {
  return url.size() > 8 && url.compare(0, 8, "https://") == 0 &&
         std::none_of(url.begin(), url.end(),
                      [](char c) { return static_cast<unsigned char>(c) <= ' '; });
}

std::optional<std::vector<unsigned char>> decodeSignature(const std::string& text) {
  std::vector<unsigned char> bytes(crypto_sign_BYTES);
  std::size_t length = 0;
  const char* end = nullptr;
  if (sodium_base642bin(bytes.data(), bytes.size(), text.data(), text.size(), nullptr, &length,
                        &end, sodium_base64_VARIANT_ORIGINAL) != 0 ||
      end != text.data() + text.size() || length != crypto_sign_BYTES)
    return std::nullopt;
  return bytes;
}

std::string field(const RawItem& raw, const std::string& name) {
  auto it = raw.fields.find(name);
  if (it == raw.fields.end()) it = raw.fields.find("enclosure:" + name);
  return it == raw.fields.end() ? std::string() : it->second;
}

bool has(const RawItem& raw, const std::string& name) {
  return raw.fields.count(name) || raw.fields.count("enclosure:" + name);
}

// The checks of one item; returns why it is rejected, or fills `item`.
std::string check(const RawItem& raw, AppcastItem& item) {
  if (!raw.duplicates.empty()) return "repeated " + raw.duplicates.front();
  if (raw.enclosures != 1) return raw.enclosures ? "several enclosures" : "no enclosure";
  item.title = field(raw, "title");
  item.version = field(raw, "version");
  item.shortVersion = field(raw, "shortVersionString");
  item.minimumSystemVersion = field(raw, "minimumSystemVersion");
  item.releaseNotesLink = field(raw, "releaseNotesLink");
  item.description = field(raw, "description");
  item.url = field(raw, "url");
  item.type = field(raw, "type");
  if (!isVersion(item.version)) return "no usable version";
  if (has(raw, "shortVersionString") && item.shortVersion.empty()) return "empty short version";
  if (raw.fields.count("minimumSystemVersion") && !isVersion(item.minimumSystemVersion))
    return "unusable minimum system version";
  if (!isHttpsUrl(item.url)) return "enclosure URL is not https";
  if (item.type.empty()) return "enclosure without type";
  const auto length = parseLength(field(raw, "length"));
  if (!length) return "enclosure length is not a positive size";
  item.length = *length;
  if (raw.fields.count("edSignature")) {
    auto signature = decodeSignature(field(raw, "edSignature"));
    if (!signature) return "signature is not 64 bytes of base64";
    item.edSignature = std::move(*signature);
  }
  return {};
}

class Parser {
 public:
  Parser() : p_(XML_ParserCreateNS(nullptr, '|'), XML_ParserFree) {
    XML_SetUserData(p_.get(), this);
    XML_SetElementHandler(p_.get(), &Parser::onStart, &Parser::onEnd);
    XML_SetCharacterDataHandler(p_.get(), &Parser::onText);
    // A feed has no business declaring entities; refusing any DTD also refuses entity
    // expansion attacks.
    XML_SetStartDoctypeDeclHandler(p_.get(), &Parser::onDoctype);
  }

  Appcast parse(std::string_view xml) {
    if (xml.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) {
      result_.error = "feed too large";
    } else if (XML_Parse(p_.get(), xml.data(), static_cast<int>(xml.size()), XML_TRUE) !=
               XML_STATUS_OK) {
      if (result_.error.empty())
        result_.error = std::string("not well-formed XML: ") +
                        XML_ErrorString(XML_GetErrorCode(p_.get())) + " at line " +
                        std::to_string(XML_GetCurrentLineNumber(p_.get()));
    } else if (!sawChannel_) {
      result_.error = "no RSS channel";
    }
    if (!result_.error.empty()) {
      result_.items.clear();
      result_.rejected.clear();
    }
    return std::move(result_);
  }

 private:
  static std::string localName(const XML_Char* name) {
    std::string_view n(name);
    if (n.rfind(sparkle, 0) == 0) n.remove_prefix(sizeof(sparkle) - 1);
    return std::string(n);
  }

  void start(const std::string& name, const XML_Char** attributes) {
    path_.push_back(name);
    text_.clear();
    if (path_.size() == 2 && path_[0] == "rss" && name == "channel") sawChannel_ = true;
    if (isItemPath()) item_ = RawItem{};
    if (item_ && path_.size() == 4 && name == "enclosure") {
      ++item_->enclosures;
      for (auto a = attributes; a[0]; a += 2) put(localName(a[0]), trimmed(a[1]));
    }
  }

  void end() {
    if (item_ && path_.size() == 4 && path_.back() != "enclosure")
      put(path_.back(), trimmed(text_));
    if (isItemPath() && item_) {
      AppcastItem item;
      if (auto why = check(*item_, item); why.empty())
        result_.items.push_back(std::move(item));
      else
        result_.rejected.push_back(why);
      item_.reset();
    }
    path_.pop_back();
    text_.clear();
  }

  // The enclosure's own version attributes are kept apart: the element form wins over them, as
  // in the framework's feeds. The same name twice in one form is a broken item.
  void put(const std::string& name, std::string value) {
    const bool versionOnEnclosure =
        path_.back() == "enclosure" && (name == "version" || name == "shortVersionString");
    const std::string key = versionOnEnclosure ? "enclosure:" + name : name;
    if (!item_->fields.emplace(key, std::move(value)).second) item_->duplicates.push_back(name);
  }

  bool isItemPath() const {
    return path_.size() == 3 && path_[0] == "rss" && path_[1] == "channel" && path_[2] == "item";
  }

  static void onStart(void* self, const XML_Char* name, const XML_Char** attributes) {
    static_cast<Parser*>(self)->start(localName(name), attributes);
  }
  static void onEnd(void* self, const XML_Char*) { static_cast<Parser*>(self)->end(); }
  static void onText(void* self, const XML_Char* s, int length) {
    auto* parser = static_cast<Parser*>(self);
    if (parser->path_.size() == 4) parser->text_.append(s, static_cast<std::size_t>(length));
  }
  static void onDoctype(void* self, const XML_Char*, const XML_Char*, const XML_Char*, int) {
    auto* parser = static_cast<Parser*>(self);
    parser->result_.error = "document type declarations are not accepted";
    XML_StopParser(parser->p_.get(), XML_FALSE);
  }

  std::unique_ptr<XML_ParserStruct, decltype(&XML_ParserFree)> p_;
  std::vector<std::string> path_;
  std::string text_;
  std::optional<RawItem> item_;
  bool sawChannel_ = false;
  Appcast result_;
};

}  // namespace

Appcast parseAppcast(std::string_view xml) {
  return Parser().parse(xml);
}

std::optional<AppcastItem> selectUpdate(const std::vector<AppcastItem>& items,
                                        std::string_view running, std::string_view system,
                                        std::string_view type) {
  const AppcastItem* best = nullptr;
  for (const auto& item : items) {
    if (item.type != type || compareVersions(item.version, running) <= 0) continue;
    if (!system.empty() && !item.minimumSystemVersion.empty() &&
        compareVersions(system, item.minimumSystemVersion) < 0)
      continue;
    if (!best || compareVersions(item.version, best->version) > 0) best = &item;
  }
  if (!best) return std::nullopt;
  return *best;
}

}  // namespace orlet
