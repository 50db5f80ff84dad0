#pragma once
// The platform's keyed collection: items under text keys found without regard
// to case, counted, in insertion order. A missing key is a failure.
#include <QHash>
#include <QString>
#include <vector>

#include "mapping/maperror.h"

template <typename T>
class Collection {
public:
    int Count() const { return int(items_.size()); }
    void Add(const T& item, const QString& key = QString()) {
        if (numbered_ && positionOf(key) == Count()) {
            items_.push_back(item);
            return;
        }
        if (numbered_) indexPositions();
        if (!key.isNull()) {
            const QString k = key.toLower();
            const auto before = index_.size();
            size_t& slot = index_[k];
            if (index_.size() == before) throw MapError("key already in collection");
            slot = items_.size();
        }
        items_.push_back(item);
    }
    const T& Item(const QString& key) const {
        const size_t at = find(key);
        if (at == kMissing) throw MapError("no item under key " + key.toStdString());
        return items_[at];
    }
    const T& operator()(const QString& key) const { return Item(key); }
    // Position from 1, as the platform numbers items added without keys.
    const T& Item(int position) const {
        if (position < 1 || position > Count()) throw MapError("collection index out of range");
        return items_[size_t(position - 1)];
    }
    bool contains(const QString& key) const { return find(key) != kMissing; }
    const std::vector<T>& items() const { return items_; }
    auto begin() const { return items_.begin(); }
    auto end() const { return items_.end(); }

private:
    static constexpr size_t kMissing = size_t(-1);

    // The number a key written as a plain decimal stands for ("0", "17"; not
    // "017" or "+1"), else -1.
    static int positionOf(const QString& key) {
        const qsizetype n = key.size();
        if (n == 0 || n > 9 || (n > 1 && key[0] == u'0')) return -1;
        int v = 0;
        for (QChar c : key) {
            if (c < u'0' || c > u'9') return -1;
            v = v * 10 + (c.unicode() - u'0');
        }
        return v;
    }

    size_t find(const QString& key) const {
        if (numbered_) {
            const int p = positionOf(key);
            return p >= 0 && p < Count() ? size_t(p) : kMissing;
        }
        auto it = index_.constFind(key.toLower());
        return it == index_.constEnd() ? kMissing : *it;
    }

    // The first key out of sequence: from now on every key is hashed.
    void indexPositions() {
        index_.reserve(qsizetype(items_.size()) + 1);
        for (size_t i = 0; i < items_.size(); ++i) index_.insert(QString::number(i), i);
        numbered_ = false;
    }

    std::vector<T> items_;
    // While every key is the decimal of its item's position from 0 ("0", "1",
    // ...), as in the query results, a key is its own index and nothing is hashed.
    bool numbered_ = true;
    QHash<QString, size_t> index_;
};
