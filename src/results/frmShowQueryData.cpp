// "Query Results": one row per colour of the drawn result, with its swatch, its
// area in sq km and the class it stands for. Worked out afresh at each activation.
#include "results/frmShowQueryData.h"

#include <QCloseEvent>
#include <QPainter>
#include <QVector>

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/controls.h"
#include "mapping/platform.h"
#include "mapping/seam.h"
#include "workspace/state.h"

namespace {

QPointer<FrmShowQueryData> gForm;

QColor toQColor(int c) { return QColor(RedOf(c), GreenOf(c), BlueOf(c)); }

bool isWindQuery(const QString& name)
{
    static const QStringList kWind = {"Wind by Power Density",    "Best wind - protected areas",
                                      "Best wind + land use",     "Best wind + roads",
                                      "Best wind + transmission", "Best wind (all)"};
    return kWind.contains(name);
}

ClassBreaksRendererPtr classBreaks(const MapLayerPtr& layer)
{
    if (!layer) throw MapError("no such layer");
    auto renderer = std::dynamic_pointer_cast<ClassBreaksRenderer>(layer->Renderer);
    if (!renderer) throw MapError("layer without class breaks");
    return renderer;
}

// Index of the first symbol of the renderer with that colour, or -1.
int symbolIndexOf(const ClassBreaksRenderer& renderer, int color)
{
    for (int i = 0; i <= renderer.BreakCount(); ++i)
        if (renderer.Symbol(i)->Color == color) return i;
    return -1;
}

}  // namespace

void ShapeControl::setFillColor(int color)
{
    fillColor_ = color;
    update();
}

void ShapeControl::setBorderWidth(int width)
{
    borderWidth_ = width;
    update();
}

void ShapeControl::paintEvent(QPaintEvent*)
{
    QPainter p(this);
    p.fillRect(rect(), toQColor(fillColor_));
    QPen pen(Qt::black, borderWidth_);
    pen.setJoinStyle(Qt::MiterJoin);
    p.setPen(pen);
    p.setBrush(Qt::NoBrush);
    const qreal inset = borderWidth_ / 2.0;
    p.drawRect(QRectF(rect()).adjusted(inset, inset, -inset, -inset));
}

FrmShowQueryData::FrmShowQueryData(QWidget* owner) : QWidget(owner, Qt::Window)
{
    setWindowTitle(QStringLiteral("Query Results"));
    resize(TwipsToPx(5955), TwipsToPx(5205));
    for (int i = 0; i < kQueryDataRows; ++i) {
        shpLayerColor[i] = new ShapeControl(this);
        SetTwips(shpLayerColor[i], 120, 120 + 360 * i, 255, 255);
        shpLayerColor[i]->setFillColor(255);
        shpLayerColor[i]->setVisible(false);

        lblArea[i] = new QLabel(QStringLiteral("lblArea"), this);
        SetTwips(lblArea[i], 480, 150 + 360 * i, 1575, 255);
        lblArea[i]->setVisible(false);

        lblDescription[i] = new QLabel(QStringLiteral("lblDescription"), this);
        SetTwips(lblDescription[i], 2280, 150 + 360 * i, 3495, 255);
        lblDescription[i]->setVisible(false);
    }
}

bool FrmShowQueryData::event(QEvent* e)
{
    if (e->type() == QEvent::WindowActivate) Form_Activate();
    return QWidget::event(e);
}

void FrmShowQueryData::closeEvent(QCloseEvent* e)
{
    Form_Unload();
    e->accept();
    // Unloading ends the form; the next use makes a new one.
    if (gForm == this) gForm = nullptr;
    deleteLater();
}

void FrmShowQueryData::Form_Activate()
{
    UpdateQueryDataForm();
}

void FrmShowQueryData::Form_Unload()
{
    try {
        for (int i = 0; i < int(shpLayerColor.size()); ++i) {
            shpLayerColor[i]->setVisible(false);
            lblArea[i]->setVisible(false);
            lblDescription[i]->setVisible(false);
        }
        frmMain().UpdateInterface();
    } catch (...) {
        ErrorMessage(" Error while dunloading results table. Error Source:frmShowQueryData.Form_Unload()", 48);
    }
}

FrmShowQueryData& frmShowQueryData()
{
    if (!gForm) gForm = new FrmShowQueryData(&frmMain());
    return *gForm;
}

bool frmShowQueryDataExists() { return !gForm.isNull(); }

void UnloadFrmShowQueryData()
{
    if (!gForm) return;
    FrmShowQueryData* form = gForm;
    form->close();
    gForm = nullptr;
    delete form;
}

void FrmMain::cmdShowData_Click()
{
    try {
        FrmShowQueryData& form = frmShowQueryData();
        form.show();
        form.raise();
        form.activateWindow();
    } catch (...) {
        ErrorMessage(" Error while trying to show results query. Error Source:frmMain.cmdShowData_Click()", 48);
    }
}

std::optional<std::vector<QueryDataRow>> QueryDataTable(bool allRows)
{
    try {
        // Colour alone decides the row, in order of first occurrence.
        QVector<int> colors;
        QHash<int, double> areas;
        if (!cShapes || !cSymbols) throw MapError("no result model");
        const int n = cShapes->Count();
        for (int i = 0; i < n; ++i) {
            const QString key = QString::number(i);
            const int color = cSymbols->Item(key)->Color;
            auto shape = std::dynamic_pointer_cast<GeoShape>(cShapes->Item(key));
            if (!shape) throw MapError("result shape without area");
            const double area = shape->Area() / 1000000.0;
            auto it = areas.find(color);
            if (it != areas.end()) {
                *it += area;
            } else {
                colors.push_back(color);
                areas.insert(color, area);
            }
        }
        if (colors.size() > kQueryDataRows) seam::MsgBox(QStringLiteral("Form will not be able to show all values"));

        std::vector<QueryDataRow> rows;
        for (int r = 0; r < colors.size() && (allRows || r < kQueryDataRows); ++r) {
            const int color = colors[r];
            rows.push_back({color, areas.value(color), CreateAreaDescription(color)});
        }
        return rows;
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.UpdateQueryDataForm()", 48);
        return std::nullopt;
    }
}

void UpdateQueryDataForm()
{
    const auto rows = QueryDataTable();
    if (!rows) return;
    try {
        FrmShowQueryData& form = frmShowQueryData();
        const QString field = conv::Upper(conv::Trim(sFieldName));
        const bool solar = field == QLatin1String("ANNDIR") || field == QLatin1String("ANNTILT") ||
                           field == QLatin1String("ANNGLO");
        // Rows are only ever filled: rows beyond this result keep what they showed.
        for (int r = 0; r < int(rows->size()); ++r) {
            const QueryDataRow& row = (*rows)[size_t(r)];
            form.shpLayerColor[r]->setFillColor(row.color);
            form.shpLayerColor[r]->setVisible(true);
            if (solar) form.shpLayerColor[r]->setBorderWidth(2);
            form.lblArea[r]->setText(conv::FormatNumber(row.area, 2) + QStringLiteral(" sq km"));
            form.lblArea[r]->setVisible(true);
            form.lblDescription[r]->setText(row.description);
            form.lblDescription[r]->setVisible(true);
        }
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.UpdateQueryDataForm()", 48);
    }
}

QString CreateAreaDescription(int color)
{
    try {
        FrmMain& f = frmMain();
        const QString query = f.cboSelectQuery->Text();
        if (isWindQuery(query)) {
            auto renderer = classBreaks(LayerByFile("20_wind.shp"));
            const int b = renderer->BreakCount();
            const int i = symbolIndexOf(*renderer, color);
            if (i < 0) return QStringLiteral("Wind Power Density < 200");
            if (i == 0) return QStringLiteral("Wind Power Density < ") + conv::NumText(renderer->Break(0));
            if (i == b) return QStringLiteral("Wind Power Density >= ") + conv::NumText(renderer->Break(i - 1));
            return QStringLiteral("Wind Power Density >= ") + conv::NumText(renderer->Break(i - 1)) + QStringLiteral(" and < ") +
                   conv::NumText(renderer->Break(i));
        }
        if (query == QLatin1String("Best Solar X kWh/m2/day")) {
            auto renderer = classBreaks(f.Map1->Layers().Item(f.cboQueryDropDown3->Text()));
            const int b = renderer->BreakCount();
            const int i = symbolIndexOf(*renderer, color);
            // Unlike wind, solar has no fixed text for a colour it does not know.
            if (i < 0) return QString();
            if (i == 0) return QStringLiteral("Solar Resource < ") + conv::FormatNumber(renderer->Break(0), 1);
            if (i == b) return QStringLiteral("Solar Resource >= ") + conv::FormatNumber(renderer->Break(i - 1), 1);
            return QStringLiteral("Solar Resource >= ") + conv::FormatNumber(renderer->Break(i - 1), 1) + QStringLiteral(" < ") +
                   conv::FormatNumber(renderer->Break(i), 1);
        }
        return QString();
    } catch (...) {
        ErrorMessage(" Error Source:md_query_functions2.CreateAreaDescription()", 48);
        return QString();
    }
}
