// SampleDatabase: the demo's SQLite database of regions, customers, products and orders.
#pragma once

#include <QString>

class SampleDatabase
{
public:
    // The database file in the user's data folder, created with its rows on first use.
    static QString ensure();
    // Writes the sample rows into an empty SQLite file; the same rows on every run.
    static void create(const QString &path);
};
