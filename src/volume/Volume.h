#pragma once

#include <QString>

namespace nimbrel {

class KeyedRecord;

// The record of an older version, as its archives hold it under the class name "Volume". Read to be
// upgraded; nothing writes it. A null string is a missing one.
class Volume final
{
public:
    // initWithRoot:
    // `isMounted` begins as true (kept): an upgraded volume's is false whatever this says.
    explicit Volume(const QString &root = {});
    // initWithCoder:
    // A record of another version than 1 is empty.
    explicit Volume(const KeyedRecord &coder);

    qint64 version = 1;
    QString root = {};
    QString label = {};
    QString configPath = {};
    bool automount = false;
    bool storePassphrase = false;
    bool checkKey = false;
    bool spotlight = false;
    bool isMounted = false;
    QString mountPoint = {}; // in no archive
    QString passphrase = {}; // in no archive
};

} // namespace nimbrel
