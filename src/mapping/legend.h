#pragma once
// The legend control: one entry per layer of its map, top layer first, with a
// check box and, for a renderer, its classes as swatches with their values.
#include <QStringList>
#include <QWidget>
#include <memory>

class Map;

class Legend : public QWidget {
    Q_OBJECT
public:
    explicit Legend(QWidget* parent = nullptr);
    ~Legend() override;

    void BindLegendToMap(Map* map);
    void ClearLegend();
    void FillLegend(bool on);
    // Writes the legend as it stands to a .bmp file.
    bool SaveLegendBitmap(const QString& path);

    // For tests and the batch tool: what a click on entry i's check box does.
    void clickCheckBox(int index);
    int entryCount() const;
    // The entry's layer name and the texts of its classes, top to bottom.
    QString entryName(int index) const;
    QStringList entryClasses(int index) const;

signals:
    // After the user used a check box; the layer's Visible is already changed.
    void AfterSetLayerVisible(int index, bool isVisible);

protected:
    void paintEvent(QPaintEvent*) override;
    void mousePressEvent(QMouseEvent*) override;
    void resizeEvent(QResizeEvent*) override;
    void wheelEvent(QWheelEvent*) override;

private:
    struct Impl;
    std::unique_ptr<Impl> d_;
};
