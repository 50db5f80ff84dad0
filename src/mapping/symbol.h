#pragma once
// Symbols and renderers are plain data: they say how a feature looks; the map
// control does the painting.
#include <QString>
#include <memory>
#include <vector>

#include "mapping/maperror.h"

// A colour is one whole number: red + 256 * green + 65536 * blue.
constexpr int RGB(int r, int g, int b) { return r + 256 * g + 65536 * b; }
constexpr int RedOf(int c) { return c & 0xFF; }
constexpr int GreenOf(int c) { return (c >> 8) & 0xFF; }
constexpr int BlueOf(int c) { return (c >> 16) & 0xFF; }

struct FontDesc {
    QString Name = QStringLiteral("MS Sans Serif");
    bool Bold = false;
    double Size = 8.25;
};

// Style numbering by shape type. Polygons: 0 solid, 1 transparent (edge only),
// 4 upward diagonal hatch. Lines: 0 solid, 2 dotted, 3 dash-dot.
// Markers: 0 circle, 1 square, 2 triangle, 3 cross.
class Symbol {
public:
    int Color = RGB(190, 190, 160);
    bool Outline = true;
    int OutlineColor = RGB(0, 0, 0);
    double Size = 1;
    int Style = 0;
    FontDesc Font;
};
using SymbolPtr = std::shared_ptr<Symbol>;

class Renderer {
public:
    virtual ~Renderer() = default;
};
using RendererPtr = std::shared_ptr<Renderer>;

// BreakCount n gives n breaks and n + 1 symbols. A value up to and including
// Break(0) takes Symbol(0); above Break(i-1) up to and including Break(i),
// Symbol(i); above the last break, Symbol(n).
class ClassBreaksRenderer : public Renderer {
public:
    QString Field;
    int BreakCount() const { return int(breaks_.size()); }
    void setBreakCount(int n);
    double Break(int i) const;
    void setBreak(int i, double v);
    SymbolPtr Symbol(int i) const;
    int classOf(double v) const;

private:
    std::vector<double> breaks_;
    std::vector<SymbolPtr> symbols_{std::make_shared<::Symbol>()};
};
using ClassBreaksRendererPtr = std::shared_ptr<ClassBreaksRenderer>;

class ValueMapRenderer : public Renderer {
public:
    QString Field;
    int ValueCount() const { return int(values_.size()); }
    void setValueCount(int n);
    QString Value(int i) const;
    void setValue(int i, const QString& v);
    SymbolPtr Symbol(int i) const;
    // Index of the value equal to text (exact), or -1.
    int indexOf(const QString& text) const;

private:
    std::vector<QString> values_;
    std::vector<SymbolPtr> symbols_;
};
using ValueMapRendererPtr = std::shared_ptr<ValueMapRenderer>;

class LabelRenderer : public Renderer {
public:
    QString Field;
    bool AllowDuplicates = false;
    SymbolPtr Symbol(int i);  // made on first use

private:
    std::vector<SymbolPtr> symbols_;
};
using LabelRendererPtr = std::shared_ptr<LabelRenderer>;
