#pragma once
// Number texts and conversions of the platform the system was written for.
#include <QString>
#include <cstdint>

namespace vb {

// Shortest text of a double, up to 15 significant digits, no exponent for
// ordinary sizes: 200, 2.5, 1.9999999999.
QString Str(double v);
// The same for a 32-bit float, 7 significant digits.
QString StrSng(float v);

// Optional sign, digits, optional fraction and exponent, surrounding blanks
// allowed; the empty text is not numeric.
bool IsNumeric(const QString& s);
// Text to number as the platform converts; a non-numeric text throws MapError.
double CDbl(const QString& s);
float CSng(const QString& s);
// Whole-number conversions round halves to the even number and fail (MapError)
// outside their range, as 16- and 32-bit numbers did.
int16_t CInt(double v);
int32_t CLng(double v);
int32_t MulLng(int32_t a, int32_t b);  // 32-bit product that fails on overflow

// Fixed decimals with thousands grouping and a leading zero, in US English:
// FormatNumber(1234.5, 2) == "1,234.50".
QString FormatNumber(double v, int decimals);
// A fraction as a percentage with one decimal: 0.125 -> "12.5%".
QString FormatPercent(double fraction);

QString Trim(const QString& s);  // outer blanks only
QString UCase(const QString& s);
QString LCase(const QString& s);

}  // namespace vb
