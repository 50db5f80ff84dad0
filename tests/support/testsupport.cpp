#include "support/testsupport.h"

#include "app/application.h"

#include <QApplication>
#include <QFileInfo>
#include <filesystem>
#include <gtest/gtest.h>
#include <map>
#include <unistd.h>

#include "datagen.h"

namespace testsupport {

template <class T>
T take(std::deque<T>& queue, const T& otherwise)
{
    if (queue.empty()) return otherwise;
    T a = queue.front();
    queue.pop_front();
    return a;
}

seam::Answer Recorder::message(const QString& text, seam::Buttons buttons, seam::Icon icon)
{
    boxes.push_back({text, buttons, icon});
    if (onBox) onBox(boxes.back());
    return buttons == seam::Buttons::OK ? seam::Answer::OK : take(answers, seam::Answer::Yes);
}

seam::FileAnswer Recorder::file(const seam::FileRequest& request)
{
    fileRequests.push_back(request);
    return take(files, seam::FileAnswer{});
}

QStringList Recorder::texts() const
{
    QStringList out;
    for (const auto& b : boxes) out << b.text;
    return out;
}

Recorder& recorder() { static Recorder r; return r; }

std::string tempDir(const std::string& name)
{
    namespace fs = std::filesystem;
    fs::path p = fs::path(MARLOWAN_TEST_TMP) / (std::to_string(getpid()) + "-" + name);
    fs::remove_all(p), fs::create_directories(p);
    return p.string();
}

std::string dataset(const std::string& size, unsigned seed, const std::set<std::string>& omit)
{
    static std::map<std::string, std::string> made;
    std::string key = size + "-" + std::to_string(seed);
    for (const auto& o : omit) key += "-" + o;
    if (auto it = made.find(key); it != made.end()) return it->second;
    const std::string dir = tempDir("data-" + std::to_string(made.size()));
    datagen::generate(dir, {.size = size, .seed = seed, .omit = omit});
    return made[key] = dir;
}

MapLayerPtr layerOf(const std::string& shpPath)
{
    auto layer = std::make_shared<MapLayer>();
    layer->setGeoDataset(GeoDataset::open(QString::fromStdString(shpPath)));
    if (layer->GeoDataset()) return layer;
    ADD_FAILURE() << "cannot open " << shpPath;
    return nullptr;
}

std::string box(double x0, double y0, double x1, double y1)
{
    auto xy = [](double x, double y) { return QString("%1 %2,").arg(x, 0, 'g', 17).arg(y, 0, 'g', 17); };
    const QString ring = xy(x0, y0) + xy(x1, y0) + xy(x1, y1) + xy(x0, y1) + xy(x0, y0);
    return ("POLYGON((" + ring.chopped(1) + "))").toStdString();
}

seam::FileAnswer fileAnswer(const QString& path) { return {false, path, QFileInfo(path).fileName()}; }

}  // namespace testsupport

int main(int argc, char** argv)
{
    if (qEnvironmentVariableIsEmpty("QT_QPA_PLATFORM")) qputenv("QT_QPA_PLATFORM", "offscreen");
    QApplication app(argc, argv);
    InitApplication();
    seam::setHandler(&testsupport::recorder());
    ::testing::InitGoogleTest(&argc, argv);
    return RUN_ALL_TESTS();
}
