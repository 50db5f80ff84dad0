#pragma once
// Shared by every test executable: the Qt application, a recorder that answers
// every message box and dialog, and generated datasets.
#include <QString>
#include <QStringList>
#include <deque>
#include <functional>
#include <set>
#include <string>

#include "mapping/maplayer.h"
#include "mapping/seam.h"

namespace testsupport {

// Records every box and answers from queues; never shows a window.
class Recorder : public seam::Handler {
public:
    struct Box { QString text; seam::Buttons buttons; seam::Icon icon; };
    std::vector<Box> boxes;
    std::deque<seam::Answer> answers;          // for Yes/No boxes; Yes when empty
    std::deque<seam::FileAnswer> files;        // for file dialogs; cancelled when empty
    std::vector<seam::FileRequest> fileRequests;
    // Called with each box before it is answered (may press buttons, throw...).
    std::function<void(const Box&)> onBox;

    seam::Answer message(const QString& text, seam::Buttons buttons, seam::Icon icon) override;
    seam::FileAnswer file(const seam::FileRequest& request) override;
    QStringList texts() const;
    void clear() { boxes.clear(); answers.clear(); files.clear(); fileRequests.clear(); }
};

// The recorder installed for the whole test process.
Recorder& recorder();

// A fresh empty directory under the build tree for this test.
std::string tempDir(const std::string& name);
// A generated dataset (small unless said), made once per process and options.
std::string dataset(const std::string& size = "small", unsigned seed = 1, const std::set<std::string>& omit = {});

// A layer of a shapefile, none (and a failure) when it cannot be opened.
MapLayerPtr layerOf(const std::string& shpPath);
// The WKT of the rectangle, with every digit of the coordinates.
std::string box(double x0, double y0, double x1, double y1);

// A file answer as the open/save dialog would give it for a path.
seam::FileAnswer fileAnswer(const QString& path);

}  // namespace testsupport
