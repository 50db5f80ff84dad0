#pragma once
// "Query Results": area per colour of the last result.
#include <QLabel>
#include <QPointer>
#include <QString>
#include <QWidget>
#include <array>
#include <optional>
#include <vector>

void UpdateQueryDataForm();
QString CreateAreaDescription(int color);
void UnloadFrmShowQueryData();

// One row of the table as data: the batch tool writes these, the window shows them.
struct QueryDataRow {
    int color = 0;       // red + 256 * green + 65536 * blue
    double area = 0;     // sq km
    QString description;
};
constexpr int kQueryDataRows = 14;
// The rows the window shows for the result model as it stands, in order of
// the colours' first occurrence: at most 14, with the box "Form will not be
// able to show all values" when there are more colours. allRows keeps every
// colour, for a table written to a file (the box shows all the same). On a
// failure its message has been shown and the result is empty (nullopt).
std::optional<std::vector<QueryDataRow>> QueryDataTable(bool allRows = false);

// A filled rectangle of the form library (the colour swatch of a row).
class ShapeControl : public QWidget {
    Q_OBJECT
public:
    explicit ShapeControl(QWidget* parent = nullptr) : QWidget(parent) {}
    int FillColor() const { return fillColor_; }
    void setFillColor(int color);
    int BorderWidth() const { return borderWidth_; }
    void setBorderWidth(int width);

protected:
    void paintEvent(QPaintEvent*) override;

private:
    int fillColor_ = 255;
    int borderWidth_ = 1;
};

class FrmShowQueryData : public QWidget {
    Q_OBJECT
public:
    explicit FrmShowQueryData(QWidget* owner);

    std::array<ShapeControl*, kQueryDataRows> shpLayerColor{};
    std::array<QLabel*, kQueryDataRows> lblArea{};
    std::array<QLabel*, kQueryDataRows> lblDescription{};

    void Form_Activate();
    void Form_Unload();

protected:
    bool event(QEvent* e) override;
    void closeEvent(QCloseEvent* e) override;
};

// The one instance, made at first use, owned by frmMain.
FrmShowQueryData& frmShowQueryData();
bool frmShowQueryDataExists();
