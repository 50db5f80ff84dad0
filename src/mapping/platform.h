#pragma once
// Number texts and conversions as the system has always made them: shortest
// number texts, halves rounded to even, overflow as a failure, US number formats.
#include <QString>
#include <cstdint>

namespace conv {

// Shortest text of a double, up to 15 significant digits, no exponent for
// ordinary sizes: 200, 2.5, 1.9999999999.
QString NumText(double v);
// The same for a 32-bit float, 7 significant digits.
QString SingleText(float v);

// Optional sign, digits, optional fraction and exponent, surrounding blanks
// allowed; the empty text is not numeric.
bool IsNumeric(const QString& s);
// Text to number as the platform converts; a non-numeric text throws MapError.
double ToDouble(const QString& s);
float ToSingle(const QString& s);
// Whole-number conversions round halves to the even number and fail (MapError)
// outside their range, as 16- and 32-bit numbers did.
int16_t ToInt16(double v);
int32_t ToInt32(double v);
int32_t MulInt32(int32_t a, int32_t b);  // 32-bit product that fails on overflow

// Fixed decimals with thousands grouping and a leading zero, in US English:
// FormatNumber(1234.5, 2) == "1,234.50".
QString FormatNumber(double v, int decimals);
// A fraction as a percentage with one decimal: 0.125 -> "12.5%".
QString FormatPercent(double fraction);

QString Trim(const QString& s);  // outer blanks only
QString Upper(const QString& s);
QString Lower(const QString& s);

}  // namespace conv
