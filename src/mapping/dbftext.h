#pragma once
// The text fields of a .dbf as the file holds them. OGR's shapefile reader
// trims leading blanks, which are part of the data (land-use names, labels).
#include <QByteArray>
#include <QString>
#include <QStringDecoder>
#include <vector>

class DbfText {
public:
    bool read(const QString& path);
    // The reader's fields are the table's, in the same order; names alone
    // could not tell "Name" from "NAME". -1 unless the field at that position
    // is a character field of that name.
    int fieldAt(int position, const QString& name) const;
    // Raw bytes of a character field, trailing blanks and NULs dropped; empty when out of the file.
    QByteArray bytes(int record, int field) const;
    QByteArray header() const { return data_.left(headerLen_); }

private:
    struct FieldPos { QString name; char type; int offset; int length; };
    QByteArray data_;
    int records_ = 0, headerLen_ = 0, recordLen_ = 0;
    std::vector<FieldPos> fields_;
};

// The encoding GDAL's shapefile driver gives the language-driver byte of a
// .dbf header, asked of a copy of the header alone: with a .cpg beside the
// file, even one that names nothing GDAL knows, the driver looks no further.
QString languageDriverEncoding(QByteArray header);

// Text as the encoding GDAL named decodes it, or Latin-1 where it named none.
// Qt's decoders show a byte sequence that is invalid in its encoding as the
// replacement character, where GDAL's recoder drops it; an encoding Qt does
// not know goes through GDAL's recoder all the same.
class TextDecoder {
public:
    explicit TextDecoder(const QString& encoding);
    QString operator()(const QByteArray& b);

private:
    QByteArray encoding_;
    QStringDecoder decoder_;
};
