#include "InterfaceFile.h"

namespace interface {

// Placeholder until the readers land.
std::unique_ptr<InterfaceFile> openInterfaceFile(const QString &, QString *error)
{
    if (error) *error = QStringLiteral("interface files cannot be read yet");
    return nullptr;
}

}  // namespace interface
