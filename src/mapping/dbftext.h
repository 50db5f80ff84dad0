#pragma once
// The text fields of a .dbf as the file holds them. OGR's shapefile reader
// trims leading blanks, which are part of the data (land-use names, labels).
#include <QByteArray>
#include <QString>
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

private:
    struct FieldPos { QString name; char type; int offset; int length; };
    QByteArray data_;
    int records_ = 0, headerLen_ = 0, recordLen_ = 0;
    std::vector<FieldPos> fields_;
};

// The text of a field's bytes in the file's encoding (UTF-8 when none is
// named); bytes that are not UTF-8 are read as Latin-1.
QString decodeDbfText(const QByteArray& bytes, const QString& encoding);
