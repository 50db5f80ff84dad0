#include "mapping/platform.h"

#include <QLocale>
#include <QRegularExpression>
#include <cmath>
#include <limits>

#include "mapping/maperror.h"

namespace conv {

namespace {

// Shortest text with the given significant digits and no exponent for
// ordinary sizes, as the platform printed numbers.
QString shortest(double v, int digits)
{
    if (v == 0) return "0";
    QString s = QString::number(v, 'g', digits);
    if (!s.contains('e')) return s;
    double a = std::fabs(v);
    if (a >= 1e15 || a < 1e-5) {  // the platform used the exponent form too for such sizes
        s.replace("e+", "E+").replace("e-", "E-");
        return s;
    }
    int exp10 = int(std::floor(std::log10(a)));
    int decimals = std::max(0, digits - 1 - exp10);
    s = QString::number(v, 'f', decimals);
    if (s.contains('.')) {
        while (s.endsWith('0')) s.chop(1);
        if (s.endsWith('.')) s.chop(1);
    }
    return s;
}

const QRegularExpression& numericPattern()
{
    static const QRegularExpression re(
        R"(^\s*[+-]?(\d+\.?\d*|\.\d+)([eEdD][+-]?\d+)?\s*$)");
    return re;
}

}  // namespace

QString NumText(double v) { return shortest(v, 15); }
QString SingleText(float v) { return shortest(double(v), 7); }

bool IsNumeric(const QString& s) { return numericPattern().match(s).hasMatch(); }

double ToDouble(const QString& s)
{
    if (!IsNumeric(s)) throw MapError("type mismatch: not a number");
    QString t = s.trimmed();
    t.replace('d', 'e').replace('D', 'e');
    bool ok = false;
    double v = t.toDouble(&ok);
    if (!ok || !std::isfinite(v)) throw MapError("overflow");
    return v;
}

float ToSingle(const QString& s)
{
    double v = ToDouble(s);
    if (std::fabs(v) > double(std::numeric_limits<float>::max())) throw MapError("overflow");
    return float(v);
}

int16_t ToInt16(double v)
{
    double r = std::nearbyint(v);  // halves to even under the default rounding mode
    if (!(r >= -32768.0 && r <= 32767.0)) throw MapError("overflow");
    return int16_t(r);
}

int32_t ToInt32(double v)
{
    double r = std::nearbyint(v);
    if (!(r >= -2147483648.0 && r <= 2147483647.0)) throw MapError("overflow");
    return int32_t(r);
}

int32_t MulInt32(int32_t a, int32_t b)
{
    int64_t p = int64_t(a) * int64_t(b);
    if (p > std::numeric_limits<int32_t>::max() || p < std::numeric_limits<int32_t>::min())
        throw MapError("overflow");
    return int32_t(p);
}

QString FormatNumber(double v, int decimals)
{
    static const QLocale us(QLocale::English, QLocale::UnitedStates);
    return us.toString(v, 'f', decimals);
}

QString FormatPercent(double fraction) { return FormatNumber(fraction * 100.0, 1) + "%"; }

QString Trim(const QString& s)
{
    int b = 0, e = int(s.size());
    while (b < e && s[b] == ' ') ++b;
    while (e > b && s[e - 1] == ' ') --e;
    return s.mid(b, e - b);
}

QString Upper(const QString& s) { return s.toUpper(); }
QString Lower(const QString& s) { return s.toLower(); }

}  // namespace conv
