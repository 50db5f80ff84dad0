#pragma once
// "Map Information": the attributes found at the point of the last press on Map1.
#include <QHash>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QString>
#include <QStringList>
#include <QWidget>

class QWidget;

// A multi-line text box of the form library: both scroll bars, no wrapping,
// and its text handed out with CR LF line ends.
class InfoTextBox : public QPlainTextEdit {
    Q_OBJECT
public:
    explicit InfoTextBox(QWidget* parent = nullptr);
    QString Text() const;
    void setText(const QString& s);
};

class FrmInfo : public QWidget {
    Q_OBJECT
public:
    explicit FrmInfo(QWidget* owner);

    InfoTextBox* txtInfo = nullptr;
    QPushButton* OKButton = nullptr;

    // The fields of the current layer are collected and written in the fixed
    // order of its list (true), or written at once in table order (false).
    bool bSortedOutput = false;
    // Upper-case field name -> upper-case value text of the current record.
    QHash<QString, QString> dFieldValues;

    void Form_Activate();
    void OKButton_Click();

    bool isShowValue(const QString& sLayerTag, const QString& sFieldName);
    bool isFieldExistInArray(const QStringList& fieldList, const QString& sFieldName);
    QString sortBasedOnFieldNames(const QString& sLayerTag);
    QString sortAndMakeOutputString(const QStringList& fieldList);

protected:
    bool event(QEvent* e) override;
    void closeEvent(QCloseEvent* e) override;

private:
    // The activation that follows the closing of one of our own modal boxes is
    // no new activation of the form.
    bool returningFromModal_ = false;
};

// The one frmInfo, made (owned by frmMain) at first use.
FrmInfo& frmInfo();
bool frmInfoExists();

// Shows the one frmInfo without blocking, owned by frmMain (made at first use).
void ShowFrmInfo();
// Drops the form when the main window closes.
void UnloadFrmInfo();

// For the batch tool: the text txtInfo holds after a press on Map1 at the map
// point (x, y), with the map as it stands.
QString IdentifyTextAt(double x, double y);
