#pragma once
// What a resource handler may offer besides reading and writing: a hint before several of its
// files are read one after the other (a bundle being added), so that a handler that runs a tool
// per file can run them side by side. Callers find it with dynamic_cast on the registered handler.

#include <QStringList>

class PreparingHandler {
public:
    virtual ~PreparingHandler() = default;
    virtual void prepare(const QStringList &paths) = 0;
};
