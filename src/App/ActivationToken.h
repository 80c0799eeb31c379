#pragma once

#include <QString>

/// The desktop lets a program come to the front only with the token that it gave to the start that asks for it. Qt
/// takes it from the variable XDG_ACTIVATION_TOKEN of the process, on Wayland; elsewhere there is none.
namespace ActivationToken {

/// To be called before the process has a second thread.
void makeRoom();

/// The next window that comes to the front uses `token`. Nothing for an empty one. Main thread only.
void use(const QString& token);

} // namespace ActivationToken
