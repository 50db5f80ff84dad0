#include "mapping/dbftext.h"

#include <QFile>
#include <QStringDecoder>
#include <atomic>
#include <cpl_conv.h>
#include <gdal_priv.h>
#include <ogrsf_frmts.h>
#include <cpl_string.h>

bool DbfText::read(const QString& path)
{
    QFile f(path);
    if (!f.open(QIODevice::ReadOnly)) return false;
    data_ = f.readAll();
    if (data_.size() < 32) return false;
    const auto* u = reinterpret_cast<const unsigned char*>(data_.constData());
    records_ = int(u[4] | (u[5] << 8) | (u[6] << 16) | (u[7] << 24));
    headerLen_ = u[8] | (u[9] << 8);
    recordLen_ = u[10] | (u[11] << 8);
    int offset = 1;  // the deletion flag
    for (int pos = 32; pos + 32 <= headerLen_ && pos < data_.size() && u[pos] != 0x0D; pos += 32) {
        FieldPos fp;
        fp.name = QString::fromLatin1(reinterpret_cast<const char*>(u + pos), int(qstrnlen(reinterpret_cast<const char*>(u + pos), 11)));
        fp.type = char(u[pos + 11]);
        fp.offset = offset;
        fp.length = u[pos + 16];
        offset += fp.length;
        fields_.push_back(fp);
    }
    return true;
}

int DbfText::fieldAt(int position, const QString& name) const
{
    if (position < 0 || position >= int(fields_.size())) return -1;
    const FieldPos& fp = fields_[size_t(position)];
    return fp.type == 'C' && fp.name.compare(name, Qt::CaseInsensitive) == 0 ? position : -1;
}

QByteArray DbfText::bytes(int record, int field) const
{
    const FieldPos& fp = fields_[size_t(field)];
    qsizetype start = qsizetype(headerLen_) + qsizetype(record) * recordLen_ + fp.offset;
    if (record < 0 || record >= records_ || start + fp.length > data_.size()) return QByteArray();
    QByteArray b = data_.mid(start, fp.length);
    int e = int(b.size());
    while (e > 0 && (b[e - 1] == ' ' || b[e - 1] == '\0')) --e;
    b.truncate(e);
    return b;
}

QString languageDriverEncoding(QByteArray header)
{
    if (header.size() < 32 || header[29] == 0) return {};
    static std::atomic<int> serial{0};
    const QByteArray name = "/vsimem/marlowan-ldid-" + QByteArray::number(++serial) + ".dbf";
    for (int i = 4; i < 8; ++i) header[i] = 0;  // no records
    VSILFILE* f = VSIFileFromMemBuffer(name.constData(), reinterpret_cast<GByte*>(header.data()),
                                       vsi_l_offset(header.size()), FALSE);
    if (!f) return {};
    VSIFCloseL(f);
    QString encoding;
    {
        const char* drivers[] = {"ESRI Shapefile", nullptr};
        GDALDatasetUniquePtr ds(GDALDataset::Open(name.constData(), GDAL_OF_VECTOR | GDAL_OF_READONLY, drivers));
        if (ds && ds->GetLayerCount() > 0)
            encoding = QString::fromUtf8(ds->GetLayer(0)->GetMetadataItem("SOURCE_ENCODING", "SHAPEFILE") ?: "");
    }
    VSIUnlink(name.constData());
    return encoding;
}

TextDecoder::TextDecoder(const QString& encoding) : encoding_(encoding.toUtf8())
{
    if (encoding.isEmpty()) decoder_ = QStringDecoder(QStringDecoder::Latin1, QStringDecoder::Flag::Stateless);
    else decoder_ = QStringDecoder(encoding_.constData(), QStringDecoder::Flag::Stateless);
}

QString TextDecoder::operator()(const QByteArray& b)
{
    if (b.isEmpty()) return QString("");
    if (decoder_.isValid()) return decoder_.decode(b);
    char* utf8 = CPLRecode(b.constData(), encoding_.constData(), CPL_ENC_UTF8);
    QString s = QString::fromUtf8(utf8);
    CPLFree(utf8);
    return s;
}
