#include "mapping/seam.h"

#include <QApplication>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>

namespace seam {

namespace {

Handler* g_handler = nullptr;

// "ESRI Shapefiles (*.shp)|*.shp" -> "ESRI Shapefiles (*.shp)"; a bare "*.shp" stays.
QString qtFilter(const QString& filter)
{
    const QStringList parts = filter.split('|');
    QStringList out;
    for (int i = 0; i + 1 < parts.size(); i += 2) {
        QString label = parts[i];
        if (!label.contains('(')) label += " (" + parts[i + 1] + ")";
        out << label;
    }
    if (out.isEmpty()) out << filter;
    return out.join(";;");
}

class RealDialogs : public Handler {
public:
    Answer message(const QString& text, Buttons buttons, Icon icon) override {
        QMessageBox box(QApplication::activeWindow());
        box.setWindowTitle(QApplication::applicationName());
        box.setText(text);
        switch (icon) {
        case Icon::Exclamation: box.setIcon(QMessageBox::Warning); break;
        case Icon::Critical: box.setIcon(QMessageBox::Critical); break;
        case Icon::Question: box.setIcon(QMessageBox::Question); break;
        case Icon::Information: box.setIcon(QMessageBox::Information); break;
        case Icon::None: break;
        }
        if (buttons == Buttons::YesNo) {
            box.setStandardButtons(QMessageBox::Yes | QMessageBox::No);
            return box.exec() == QMessageBox::Yes ? Answer::Yes : Answer::No;
        }
        box.setStandardButtons(QMessageBox::Ok);
        box.exec();
        return Answer::OK;
    }

    FileAnswer file(const FileRequest& r) override {
        QFileDialog dlg(QApplication::activeWindow(), r.title, r.initialDir, qtFilter(r.filter));
        dlg.setAcceptMode(r.save ? QFileDialog::AcceptSave : QFileDialog::AcceptOpen);
        dlg.setFileMode(r.save ? QFileDialog::AnyFile : QFileDialog::ExistingFile);
        QString ext = r.defaultExt;
        if (ext.startsWith('.')) ext.remove(0, 1);
        if (!ext.isEmpty()) dlg.setDefaultSuffix(ext);
        if (!(r.flags & 2)) dlg.setOption(QFileDialog::DontConfirmOverwrite, true);
        if (!r.fileName.isEmpty()) dlg.selectFile(r.fileName);
        FileAnswer a;
        if (dlg.exec() != QDialog::Accepted || dlg.selectedFiles().isEmpty()) return a;
        a.cancelled = false;
        a.fileName = QDir::toNativeSeparators(dlg.selectedFiles().first());
        a.fileTitle = QFileInfo(a.fileName).fileName();
        return a;
    }
};

RealDialogs& realDialogs()
{
    static RealDialogs r;
    return r;
}

}  // namespace

void setHandler(Handler* handler) { g_handler = handler; }
Handler* handler() { return g_handler ? g_handler : &realDialogs(); }

Answer MsgBox(const QString& text, Buttons buttons, Icon icon) { return handler()->message(text, buttons, icon); }
Answer FailureBox(const QString& text, Icon icon) { return handler()->failure(text, icon); }
FileAnswer ShowFileDialog(const FileRequest& request) { return handler()->file(request); }

}  // namespace seam
