#include <gtest/gtest.h>

#include <charconv>
#include <cstring>
#include <random>
#include <string>

#include "platform/common/mcmv.h"
#include "platform/records/csvrecorditer.h"

using MCCommon_850::CsvParseNumber;

namespace {

double reference(const std::string& text) {
    double v = 0.0;
    const char* first = text.data();
    if (*first == '+') ++first;
    std::from_chars(first, text.data() + text.size(), v);
    return v;
}

bool sameBits(double a, double b) { return std::memcmp(&a, &b, sizeof a) == 0; }

} // namespace

// Short plain decimals take a fast path; it must give exactly the double the
// general conversion gives, for every digit count around the 15-digit limit
// where the fast path hands over.
TEST(CsvNumbers, FastPathIsBitIdenticalToGeneralConversion) {
    std::mt19937_64 gen(7);
    for (int trial = 0; trial < 200000; ++trial) {
        const int intDigits = static_cast<int>(gen() % 10);
        const int fracDigits = static_cast<int>(gen() % 10);
        if (intDigits + fracDigits == 0) continue;
        std::string text;
        if (gen() % 3 == 0) text += '-';
        for (int i = 0; i < intDigits; ++i) text += static_cast<char>('0' + gen() % 10);
        if (fracDigits > 0 || gen() % 5 == 0) text += '.';
        for (int i = 0; i < fracDigits; ++i) text += static_cast<char>('0' + gen() % 10);
        double parsed = 0.0;
        ASSERT_TRUE(CsvParseNumber(text, parsed)) << text;
        ASSERT_TRUE(sameBits(parsed, reference(text))) << text << " gave " << parsed;
    }
    // Values whose decimal digits are not exactly representable, and sign
    // and zero forms.
    for (const char* text : {"0.1", "0.3", "2.675", "-0.0", "0", "+7.25", "123456789012345", "1234567890123456",
                             "0.000000000000001", "9007199254740993", ".5", "5.", "-.25"}) {
        double parsed = 0.0;
        ASSERT_TRUE(CsvParseNumber(text, parsed)) << text;
        EXPECT_TRUE(sameBits(parsed, reference(text))) << text;
    }
    // Not numbers (the fast path must not accept what the general one
    // rejects), and no NaN or infinity either.
    double parsed = 0.0;
    for (const char* text : {"-", "+", "1.2.3", "1-2", "--1", "+-1", "1e", "1,5", "abc", "0x10", "nan", "inf", "-inf",
                             "1e999"})
        EXPECT_FALSE(CsvParseNumber(text, parsed)) << text;
    // Exponents and surrounding white space take the general path; NA is missing.
    ASSERT_TRUE(CsvParseNumber("\t-0.125e1 ", parsed));
    EXPECT_EQ(parsed, -1.25);
    ASSERT_TRUE(CsvParseNumber("NA", parsed));
    EXPECT_TRUE(MCCommon_850::MCMV::IsMissing(parsed));
}
