#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <vector>

#include "qorv_skia.h"
#include "support/guarded_buffer.h"
#include "support/random.h"

namespace {

using test::GuardedBuffer;

// A read-only string that ends with the accessible memory.
class Text {
public:
    explicit Text(const std::string &text) : memory_(text.size() + 1) {
        memcpy(memory_.data(), text.c_str(), memory_.size());
        memory_.make_read_only();
    }
    operator const char *() const { return memory_.as<char>(); }
    // The index of a result; -1 for null.
    int index(const char *result) const {
        return result == nullptr ? -1 : static_cast<int>(result - memory_.as<char>());
    }

private:
    GuardedBuffer memory_;
};

constexpr int kNone = -1;

TEST(Strings, MoveToTheDocumentedByte) {
    struct Cases {
        const char *(*move)(const char *);
        std::vector<std::pair<const char *, int>> results;
    };
    const Cases all[] = {
        {qorv_str_move_to_validw, {{"", kNone}, {" \t\r\n", kNone}, {" \t\r\nabc", 4}, {"\vabc", 0}, {"\xA0", 0}}},
        {qorv_str_move_to_eow,
         {{"", kNone},
          {"a", 0},
          {" ", 0},
          {"abc def", 2},
          {"abc", kNone},
          {"abc ", kNone},
          {"abc  ", 2},
          {"  ", kNone},
          {"\t a", 2},
          {" a b", 1},
          {"\nab\rc", 2}}},
        {qorv_str_move_to_nextw, {{"", kNone}, {"a", kNone}, {"  a", kNone}, {"  ab", 2}, {"ab", 0}}},
        {qorv_str_move_to_nextl,
         {{"", kNone},
          {"\n", kNone},
          {"ab\ncd", 2},
          {"ab\r\ncd", 3},
          {"ab\rcd", 2},
          {"ab\r\n", kNone},
          {"ab\n", kNone},
          {"ab\r\r", 2},
          {"abcd", kNone}}}};
    for (const Cases &cases : all) {
        for (const auto &[str, index] : cases.results) {
            const Text text(str);
            EXPECT_EQ(text.index(cases.move(text)), index) << &cases - all << ": " << str;
        }
    }
    EXPECT_EQ(qorv_str_move_to_validw(nullptr), nullptr);
}

struct Cut {
    const char *str, *token;
    int32_t status;
    uint32_t len;
    int next;
};

// Runs a cut with and without a place for the rest.
template <class Function>
void expect_cut(const Cut &c, Function cut) {
    const Text text(c.str);
    uint32_t len = 99;
    const char *next = "unset";
    EXPECT_EQ(cut(text, &len, &next), c.status) << c.str;
    EXPECT_EQ(std::tuple(len, text.index(next)), std::tuple(c.len, c.next)) << c.str;
    len = 99;
    EXPECT_EQ(cut(text, &len, nullptr), c.status) << c.str;
    EXPECT_EQ(len, c.len) << c.str;
}

TEST(Strings, AreCutAtAByte) {
    const Cut cuts[] = {{"", ",", -1, 0, kNone},   {"ab,cd", ",", 0, 2, 3},
                        {"ab,", ",", 0, 2, kNone}, {"abcd", ",", 0, 4, kNone},
                        {",b", ",", 0, 0, 1},      {"ab\r\n,c", ",", 0, 2, 3},
                        {"ab\ncd,", ",", 0, 2, 3}, {"\xFF\xFE", "\xFE", 0, 1, kNone},
                        {"ab", "", 0, 2, kNone}};
    for (const Cut &c : cuts) {
        expect_cut(c, [&](const char *str, uint32_t *len, const char **next) {
            return qorv_str_parse_by_ctok(str, c.token[0], len, next);
        });
    }
}

TEST(Strings, AreCutAtAToken) {
    const Cut cuts[] = {{"", "::", -1, 0, kNone},     {"ab::cd", "::", 0, 2, 4},   {"ab::", "::", 0, 2, kNone},
                        {"abcd", "::", -1, 0, kNone}, {"ab:", "::", -1, 0, kNone}, {"ab:c\n::", "::", 0, 4, 5},
                        {"a\r\nb", "::", 0, 1, 2},    {"ab\n", "::", 0, 2, kNone}, {"a\nb", "\n", 0, 1, 2},
                        {"ab", "", 0, 0, 0},          {"aab", "ab", 0, 1, kNone}};
    for (const Cut &c : cuts) {
        expect_cut(c, [&](const char *str, uint32_t *len, const char **next) {
            return qorv_str_parse_by_stok(str, Text(c.token), len, next);
        });
    }
}

TEST(Strings, AreCutAtALineEnd) {
    const Cut cuts[] = {{"", "", -1, 0, kNone},     {"ab\ncd", "", 0, 2, 3},     {"ab\n", "", 0, 2, kNone},
                        {"ab\r\ncd", "", 0, 2, 4},  {"ab\r\n", "", 0, 2, kNone}, {"ab\rcd\n", "", -1, 0, kNone},
                        {"ab\r", "", -1, 0, kNone}, {"abcd", "", -1, 4, kNone},  {"\nab", "", 0, 0, 1}};
    for (const Cut &c : cuts) {
        expect_cut(c, qorv_str_parse_one_line);
    }
}

TEST(Strings, AreEscapedAndUnescaped) {
    struct Case {
        int32_t (*convert)(const char *, char *);
        size_t growth;
        std::string from, to;
    };
    const Case cases[] = {{qorv_str_conv_a2uri, 3, "", ""},
                          {qorv_str_conv_a2uri, 3, "a b", "a%20b"},
                          {qorv_str_conv_a2uri, 3, "   ", "%20%20%20"},
                          {qorv_str_conv_a2uri, 3, "a/%+?\t", "a/%+?\t"},
                          {qorv_str_conv_uri2a, 1, "", ""},
                          {qorv_str_conv_uri2a, 1, "a%20b", "a b"},
                          {qorv_str_conv_uri2a, 1, "%41%2F%f2+", "A \x02+"},
                          {qorv_str_conv_uri2a, 1, "%99", "\x99"},
                          {qorv_str_conv_uri2a, 1, "a%4", "a\x40"},
                          {qorv_str_conv_uri2a, 1, "%", std::string(1, '\0')},
                          {qorv_str_conv_uri2a, 1, "%00x", std::string("\0x", 2)}};
    for (const Case &c : cases) {
        GuardedBuffer dst(c.growth * c.from.size() + 1);
        EXPECT_EQ(c.convert(Text(c.from), dst.as<char>()), static_cast<int32_t>(c.to.size())) << c.from;
        EXPECT_EQ(std::string(dst.as<char>(), c.to.size() + 1), std::string(c.to.c_str(), c.to.size() + 1)) << c.from;
    }
    EXPECT_EQ(qorv_str_get_one_az09(nullptr), 0);
}

struct Uri {
    int32_t status;
    std::string parts[4];
    int next;
};

// Splits with every output as short as it may be.
Uri split(const std::string &str) {
    const Text text(str);
    std::vector<GuardedBuffer> out;
    for (int i = 0; i < 4; i++) out.emplace_back(str.size() + 2);
    const char *next = "unset";
    Uri uri = {
        qorv_str_parse_uri(text, out[0].as<char>(), out[1].as<char>(), out[2].as<char>(), out[3].as<char>(), &next),
        {},
        text.index(next)};
    for (size_t i = 0; i < 4; i++)
        uri.parts[i] = std::string(out[i].as<char>(), strnlen(out[i].as<char>(), out[i].size()));
    return uri;
}

TEST(Uris, AreSplitWithEveryOddEnd) {
    struct Case {
        const char *str;
        Uri uri;
    };
    const Case cases[] = {{"", {-1, {"", "", "", ""}, kNone}},
                          {" \n", {-1, {"", "", "", ""}, kNone}},
                          {"abc", {-1, {"", "", "", ""}, kNone}},
                          {"rtsp://", {-1, {"rtsp", "", "", ""}, kNone}},
                          {"rtsp://srv/x/y\n", {0, {"rtsp", "srv", "", "/x/y"}, kNone}},
                          {" \trtsp://srv/x", {0, {"rtsp", "srv", "", "/x"}, kNone}},
                          {"file:///tmp/a", {0, {"file", "", "", "/tmp/a"}, kNone}},
                          {"http://srv", {0, {"http", "srv", "", ""}, kNone}},
                          {"http://srv/", {0, {"http", "srv", "", ""}, kNone}},
                          {"http://srv//x", {0, {"http", "srv", "", "/x"}, kNone}},
                          {"http://srv:", {0, {"http", "srv:", "", ""}, kNone}},
                          {"http://srv:/x", {-1, {"http", "srv", "", ""}, kNone}},
                          {"http://srv:80", {0, {"http", "srv", "80", ""}, kNone}},
                          {"http://srv:80/", {0, {"http", "srv", "80", ""}, kNone}},
                          {"http://srv:80/x", {0, {"http", "srv", "80", ""}, kNone}},
                          {"http://srv:80/xyz\n", {0, {"http", "srv", "80", ""}, kNone}},
                          // With a port the path takes its length from the URI and its bytes from the next line.
                          {"http://srv:80/xyz\nabcdef", {0, {"http", "srv", "80", "/abc"}, 18}},
                          {"http://srv:80/xyz\r\n/bcdef", {0, {"http", "srv", "80", "/bc"}, 19}},
                          {"http://srv:80/xyz\nab", {0, {"http", "srv", "80", "/ab"}, 18}},
                          {"http://srv:80/xyz\rab", {0, {"http", "srv", "80", ""}, kNone}},
                          {"http://srv:80/\nab", {0, {"http", "srv", "80", ""}, 15}},
                          // A colon in the path, or a line end with text after it, separates a port.
                          {"http://srv/a:b/c", {0, {"http", "srv/a", "b", ""}, kNone}},
                          {"http://srv/x\nab/c\nd", {0, {"http", "srv/x", "ab", "/d"}, 18}},
                          {"http://srv/x\r\n", {-1, {"http", "srv/x", "", ""}, kNone}},
                          {"http\n//srv/x", {0, {"http", "", "", "//srv/x"}, kNone}},
                          {"http://\n", {0, {"http", "", "", "/\n"}, kNone}},
                          {"http://srv\r", {0, {"http", "srv", "", ""}, kNone}},
                          {"http://srv/x\r", {0, {"http", "srv", "", ""}, kNone}}};
    for (const Case &c : cases) {
        const Uri uri = split(c.str);
        EXPECT_EQ(uri.status, c.uri.status) << c.str;
        EXPECT_EQ(uri.next, c.uri.next) << c.str;
        for (int i = 0; i < 4; i++) EXPECT_EQ(uri.parts[i], c.uri.parts[i]) << c.str << ", part " << i;
    }
    char scheme = 1, host = 1, port = 1, path = 1;
    const char *next = &path;
    EXPECT_EQ(qorv_str_parse_uri(nullptr, &scheme, &host, &port, &path, &next), -1);
    EXPECT_EQ(std::tuple(scheme, host, port, path, next), std::tuple(0, 0, 0, 0, nullptr));
}

// Nothing outside string and outputs is touched, whatever the text: guard pages stand round each.
TEST(Strings, StayInsideForRandomText) {
    constexpr char kAlphabet[] = "ab01:/% \t\r\n";
    test::Random random;
    for (int round = 0; round < 3000; round++) {
        std::string str(random.below(14), ' ');
        for (char &c : str) c = kAlphabet[random.below(sizeof kAlphabet - 1)];
        if (random.below(2) != 0) str.insert(random.below(static_cast<uint32_t>(str.size()) + 1), "://");
        split(str);
        const Text text(str);
        const int length = static_cast<int>(str.size());
        for (auto move :
             {qorv_str_move_to_validw, qorv_str_move_to_eow, qorv_str_move_to_nextw, qorv_str_move_to_nextl}) {
            EXPECT_LT(text.index(move(text)), length) << str;
        }
        uint32_t len;
        const char *next;
        qorv_str_parse_by_ctok(text, ':', &len, &next);
        EXPECT_LT(text.index(next), length) << str;
        qorv_str_parse_by_stok(text, Text("://"), &len, &next);
        EXPECT_LT(text.index(next), length) << str;
        qorv_str_parse_one_line(text, &len, &next);
        EXPECT_LT(text.index(next), length) << str;
        GuardedBuffer escaped(3 * str.size() + 1), back(3 * str.size() + 1), plain(str.size() + 1);
        qorv_str_conv_a2uri(text, escaped.as<char>());
        qorv_str_conv_uri2a(text, plain.as<char>());
        if (str.find('%') != std::string::npos) continue;
        qorv_str_conv_uri2a(escaped.as<char>(), back.as<char>());
        EXPECT_EQ(back.as<char>(), str);
    }
}

}  // namespace
