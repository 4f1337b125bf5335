#ifndef CHECK_NEARNAMES_H
#define CHECK_NEARNAMES_H

#include <vector>

#include <QString>
#include <QtGlobal>

// Names that another one may be meant for: those from which it differs in letter case only, or by
// an edit distance of at most 4 and of half its length.
class NearNames
{
public:
    // To be called after all names have been added that follow one another.
    void sort();
    void add(const QString& name) { m_names.push_back(name); }

    // The nearest one, of several the first in the order of their characters; empty if none is
    // near.
    QString nearest(const QString& wanted) const;
    // Whether one is near; false if that is not known after as many characters as `effort`, from
    // which what was compared is subtracted. A name that is nearly the same up to its last
    // characters is found in any case.
    bool hasNear(const QString& wanted, qint64& effort) const;

private:
    std::vector<QString> m_names; // sorted, each once
};

#endif // CHECK_NEARNAMES_H
