#include "assistant/GuessTime.h"

#include "app/TextFormat.h"
#include "app/Texts.h"

#include <openssl/crypto.h>

#include <cmath>
#include <zxcvbn.h>

namespace nimbrel {

namespace {

constexpr qsizetype longestExamined = 64; // characters

// A key derivation of some thousand rounds on many machines at once.
constexpr double guessesEachSecond = 1e6;

double entropyOf(const QString &passphrase) // bits
{
    QByteArray text = passphrase.left(longestExamined).toUtf8();
    const double entropy = ZxcvbnMatch(text.constData(), nullptr, nullptr);
    OPENSSL_cleanse(text.data(), static_cast<std::size_t>(text.size()));
    return entropy;
}

// On average half of all are tried.
double secondsFor(double entropy)
{
    return std::exp2(entropy - 1) / guessesEachSecond;
}

QString inWords(double seconds)
{
    constexpr double hour = 3600;
    constexpr double day = 24 * hour;
    constexpr double year = 365.25 * day;
    if (seconds < 1)
        return texts::tr("less than a second");
    if (seconds < hour)
        return texts::tr("minutes");
    if (seconds < day)
        return texts::tr("hours");
    if (seconds < 60 * day)
        return texts::tr("days");
    if (seconds < 2 * year)
        return texts::tr("months");
    return seconds < 100 * year ? texts::tr("years") : texts::tr("centuries");
}

} // namespace

QString guessTime(const QString &passphrase)
{
    return passphrase.isEmpty() ? QString() : inWords(secondsFor(entropyOf(passphrase)));
}

} // namespace nimbrel
