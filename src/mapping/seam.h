#pragma once
// Every message box, question and file dialog of the program goes through
// here, so that tests and the batch tool can answer them without a window.
#include <QString>

namespace seam {

enum class Buttons { OK, YesNo };
enum class Icon { None, Exclamation, Critical, Question, Information };
enum class Answer { OK, Yes, No };

struct FileRequest {
    bool save = false;
    QString title;
    QString filter;       // platform form: "ESRI Shapefiles (*.shp)|*.shp"
    QString defaultExt;   // ".shp" or "shp"
    QString initialDir;
    QString fileName;
    int flags = 0;        // 2 = ask before overwriting
};

struct FileAnswer {
    bool cancelled = true;
    QString fileName;   // full path
    QString fileTitle;  // name without path
};

class Handler {
public:
    virtual ~Handler() = default;
    virtual Answer message(const QString& text, Buttons buttons, Icon icon) = 0;
    // A box that reports a failure; on the screen it is a box like any other.
    virtual Answer failure(const QString& text, Icon icon) { return message(text, Buttons::OK, icon); }
    virtual FileAnswer file(const FileRequest& request) = 0;
};

// Null restores the real dialogs.
void setHandler(Handler* handler);
Handler* handler();

// A box without a title of its own (the application's title shows), with the
// given buttons and icon.
Answer MsgBox(const QString& text, Buttons buttons = Buttons::OK, Icon icon = Icon::None);
// The same plain OK box, for a text that reports a failure: ErrorMessage and
// the boxes that say something could not be done or read.
Answer FailureBox(const QString& text, Icon icon = Icon::None);
FileAnswer ShowFileDialog(const FileRequest& request);

}  // namespace seam
