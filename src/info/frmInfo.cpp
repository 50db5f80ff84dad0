#include "info/frmInfo.h"

#include <QApplication>
#include <QCloseEvent>
#include <QPointer>

#include "app/frmMain.h"
#include "app/messages.h"
#include "mapping/controls.h"
#include "mapping/map.h"
#include "mapping/platform.h"

namespace {

const QString CRLF = QStringLiteral("\r\n");

// The attributes a standard file shows, and whether they come in this order.
struct InfoRow {
    QStringList fields;
    bool sorted = false;
};

QStringList solarList(const QString& suffix)
{
    QStringList list{"Cell_ID", "Gridcode", "Lon", "Lat"};
    for (const char* month : {"Jan", "Feb", "Mar", "Apr", "May", "Jun", "Jul", "Aug", "Sep", "Oct", "Nov", "Dec", "Ann"})
        list << QString::fromLatin1(month) + suffix;
    return list;
}

// The whole Tag decides, with case: "15_solar_direct.shp" and
// "15_solar_glo.shp" have different lists.
bool findInfoRow(const QString& tag, InfoRow& row)
{
    if (tag == "01_elevation.shp") row = {{"Elev_m"}, false};
    else if (tag == "02_landuse.shp") row = {{"Land_use"}, false};
    else if (tag == "11_solar_direct.shp" || tag == "15_solar_direct.shp" || tag == "17_solar_direct.shp"
             || tag == "13_solar_direct.shp")
        row = {solarList("dir"), true};
    else if (tag == "12_solar_tilt.shp" || tag == "16_solar_tilt.shp" || tag == "18_solar_tilt.shp")
        row = {solarList("tilt"), true};
    else if (tag == "14_solar_glo.shp" || tag == "15_solar_glo.shp") row = {solarList("glo"), true};
    else if (tag == "20_wind.shp") row = {{"WINDCLASS", "WINDPWRD"}, true};
    else if (tag == "30_lakes.shp") row = {{"NAME"}, false};
    else if (tag == "31_protectedarea.shp") row = {{"NAME", "TYPE"}, true};
    else if (tag == "40_rivers.shp") row = {{"NAME"}, false};
    else if (tag == "36_subcountrybnd3.shp" || tag == "37_subcountrybnd2.shp" || tag == "38_subcountrybnd1.shp")
        row = {{"NAME", "POP"}, true};
    else if (tag == "42_railroad.shp" || tag == "43_roads.shp") row = {{"NAME"}, false};
    else if (tag == "44_transmissionline.shp") row = {{"NAME", "VOLTAGE"}, true};
    else if (tag == "51_powerplant.shp") row = {{"NAME", "CAPACITY"}, true};
    else if (tag == "52_facilities.shp") row = {{"NAME", "TYPE"}, true};
    else if (tag == "53_airports.shp") row = {{"NAME"}, false};
    else if (tag == "59_cities.shp") row = {{"NAME", "TYPE", "POP"}, true};
    else return false;
    return true;
}

QPointer<FrmInfo>& instance()
{
    static QPointer<FrmInfo> form;
    return form;
}

}  // namespace

InfoTextBox::InfoTextBox(QWidget* parent) : QPlainTextEdit(parent)
{
    setLineWrapMode(QPlainTextEdit::NoWrap);
    setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
    setVerticalScrollBarPolicy(Qt::ScrollBarAlwaysOn);
}

QString InfoTextBox::Text() const
{
    QString s = toPlainText();
    s.replace(QLatin1Char('\n'), CRLF);
    return s;
}

void InfoTextBox::setText(const QString& s)
{
    setPlainText(s);
}

FrmInfo::FrmInfo(QWidget* owner) : QWidget(owner, Qt::Dialog)
{
    setWindowTitle("Map Information");
    setFixedSize(TwipsToPx(6960), TwipsToPx(8865));

    txtInfo = new InfoTextBox(this);
    SetTwips(txtInfo, 90, 540, 6825, 8265);
    txtInfo->setText("Information from all layers");

    OKButton = new QPushButton("OK", this);
    SetTwips(OKButton, 5700, 60, 1215, 375);
    connect(OKButton, &QPushButton::clicked, this, [this] { OKButton_Click(); });
}

bool FrmInfo::event(QEvent* e)
{
    if (e->type() == QEvent::WindowDeactivate) {
        QWidget* to = QApplication::activeWindow();
        returningFromModal_ = to && to != this && to->isModal();
    }
    const bool handled = QWidget::event(e);
    if (e->type() == QEvent::WindowActivate) {
        if (returningFromModal_)
            returningFromModal_ = false;
        else
            Form_Activate();
    }
    return handled;
}

void FrmInfo::closeEvent(QCloseEvent* e)
{
    // The window's own close box unloads the form; OK only hides it.
    e->accept();
    if (instance() == this) instance() = nullptr;
    deleteLater();
}

void FrmInfo::Form_Activate()
{
    try {
        FrmMain& main = frmMain();
        Map* map = main.Map1;
        const PointPtr point = map->ToMapPoint(float(main.iDownX), float(main.iDownY));
        const float sngTolerance = float(map->Extent()->Width() / 300);

        QString sOutput;
        const LayersCollection& layers = map->Layers();
        for (int i = 0; i < layers.Count(); ++i) {
            const MapLayerPtr layer = layers.Item(i);
            if (!layer->Visible || conv::Upper(layer->Tag) == conv::Upper("39_countryboundary.shp")) continue;

            const double distance = layer->shapeType() == moPolygon ? 0.0 : double(sngTolerance);
            const RecordsetPtr rs = layer->SearchByDistance(point, distance, QString());
            if (!rs || rs->Eof()) continue;

            bSortedOutput = false;
            sOutput += layer->Name + CRLF;
            while (!rs->Eof()) {
                dFieldValues = QHash<QString, QString>();
                ::Fields fields = rs->Fields();
                for (int j = 0; j < fields.Count(); ++j) {
                    const Field field = fields.at(j);
                    const QString name = field.Name();
                    if (conv::Lower(name) == "shape") continue;
                    if (!isShowValue(layer->Tag, conv::Upper(name))) continue;
                    if (bSortedOutput) {
                        const QString key = conv::Upper(name);
                        if (!dFieldValues.contains(key)) dFieldValues.insert(key, conv::Upper(fields.Item(name).toText()));
                    } else {
                        sOutput += name + ": " + field.toText() + CRLF;
                    }
                }
                if (bSortedOutput) sOutput += sortBasedOnFieldNames(layer->Tag);
                sOutput += CRLF;
                rs->MoveNext();
            }
            sOutput += CRLF;
        }
        txtInfo->setText(sOutput);
    } catch (...) {
        ErrorMessage(" Error while Trying to activate Info Form. Error Source:frmInfo.Form_Activate()", 48);
    }
}

void FrmInfo::OKButton_Click()
{
    try {
        txtInfo->setText(QString());
        hide();
    } catch (...) {
        ErrorMessage(" Error while Cancelling Info Form. Error Source:frmInfo.Form_Activate()", 48);
    }
}

bool FrmInfo::isShowValue(const QString& sLayerTag, const QString& sFieldName)
{
    try {
        InfoRow row;
        if (!findInfoRow(sLayerTag, row)) return false;
        const bool bResult = isFieldExistInArray(row.fields, sFieldName);
        bSortedOutput = row.sorted;
        return bResult;
    } catch (...) {
        ErrorMessage(" Error Source:frmInfo.isShowValue()", 48);
        return false;
    }
}

bool FrmInfo::isFieldExistInArray(const QStringList& fieldList, const QString& sFieldName)
{
    try {
        const QString wanted = conv::Upper(sFieldName);
        for (const QString& entry : fieldList)
            if (conv::Upper(entry) == wanted) return true;
        return false;
    } catch (...) {
        ErrorMessage(" Error Source:frmInfo.isFieldExistInArray()", 48);
        return false;
    }
}

QString FrmInfo::sortBasedOnFieldNames(const QString& sLayerTag)
{
    try {
        InfoRow row;
        if (!findInfoRow(sLayerTag, row) || !row.sorted) return QString();
        return sortAndMakeOutputString(row.fields);
    } catch (...) {
        ErrorMessage(" Error Source:frmInfo. sortBasedOnFieldNames()", 48);
        return QString();
    }
}

QString FrmInfo::sortAndMakeOutputString(const QStringList& fieldList)
{
    try {
        QString sOutput;
        for (const QString& entry : fieldList) {
            const QString name = conv::Upper(entry);
            const auto it = dFieldValues.constFind(name);
            if (it != dFieldValues.constEnd()) sOutput += name + " : " + *it + CRLF;
        }
        return sOutput;
    } catch (...) {
        ErrorMessage(" Error Source:frmInfo.sortAndMakeOutputString()", 48);
        return QString();
    }
}

FrmInfo& frmInfo()
{
    QPointer<FrmInfo>& form = instance();
    if (!form) form = new FrmInfo(&frmMain());
    return *form;
}

bool frmInfoExists()
{
    return !instance().isNull();
}

void ShowFrmInfo()
{
    FrmInfo& form = frmInfo();
    form.show();
    form.raise();
    form.activateWindow();
}

void UnloadFrmInfo()
{
    QPointer<FrmInfo>& form = instance();
    if (form) delete form.data();
    form = nullptr;
}

QString IdentifyTextAt(double x, double y)
{
    try {
        FrmMain& main = frmMain();
        // The inverse of ToMapPoint, taken from the map itself so that it
        // agrees with whatever transform the control uses.
        const PointPtr origin = main.Map1->ToMapPoint(0, 0);
        const PointPtr inch = main.Map1->ToMapPoint(1440, 1440);
        const double perTwipX = (inch->X() - origin->X()) / 1440;
        const double perTwipY = (inch->Y() - origin->Y()) / 1440;
        if (perTwipX == 0 || perTwipY == 0) return QString();
        main.iDownX = conv::ToInt16((x - origin->X()) / perTwipX);
        main.iDownY = conv::ToInt16((y - origin->Y()) / perTwipY);

        ShowFrmInfo();
        FrmInfo& form = frmInfo();
        form.Form_Activate();
        return form.txtInfo->Text();
    } catch (...) {
        return QString();
    }
}
