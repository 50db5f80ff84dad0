#include "mapping/symbol.h"

void ClassBreaksRenderer::setBreakCount(int n)
{
    if (n < 0) throw MapError("negative break count");
    breaks_.resize(size_t(n), 0.0);
    symbols_.resize(size_t(n) + 1);
    for (auto& s : symbols_)
        if (!s) s = std::make_shared<::Symbol>();
}

double ClassBreaksRenderer::Break(int i) const
{
    if (i < 0 || i >= BreakCount()) throw MapError("break index out of range");
    return breaks_[size_t(i)];
}

void ClassBreaksRenderer::setBreak(int i, double v)
{
    if (i < 0 || i >= BreakCount()) throw MapError("break index out of range");
    breaks_[size_t(i)] = v;
}

SymbolPtr ClassBreaksRenderer::Symbol(int i) const
{
    if (i < 0 || i > BreakCount()) throw MapError("symbol index out of range");
    return symbols_[size_t(i)];
}

int ClassBreaksRenderer::classOf(double v) const
{
    // A value equal to a break belongs to the class below it.
    int i = 0;
    while (i < BreakCount() && v > breaks_[size_t(i)]) ++i;
    return i;
}

void ValueMapRenderer::setValueCount(int n)
{
    if (n < 0) throw MapError("negative value count");
    values_.resize(size_t(n));
    symbols_.resize(size_t(n));
    for (auto& s : symbols_)
        if (!s) s = std::make_shared<::Symbol>();
}

QString ValueMapRenderer::Value(int i) const
{
    if (i < 0 || i >= ValueCount()) throw MapError("value index out of range");
    return values_[size_t(i)];
}

void ValueMapRenderer::setValue(int i, const QString& v)
{
    if (i < 0 || i >= ValueCount()) throw MapError("value index out of range");
    values_[size_t(i)] = v;
}

SymbolPtr ValueMapRenderer::Symbol(int i) const
{
    if (i < 0 || i >= ValueCount()) throw MapError("symbol index out of range");
    return symbols_[size_t(i)];
}

int ValueMapRenderer::indexOf(const QString& text) const
{
    for (size_t i = 0; i < values_.size(); ++i)
        if (values_[i] == text) return int(i);
    return -1;
}

SymbolPtr LabelRenderer::Symbol(int i)
{
    if (i < 0) throw MapError("symbol index out of range");
    while (int(symbols_.size()) <= i) symbols_.push_back(std::make_shared<::Symbol>());
    return symbols_[size_t(i)];
}
