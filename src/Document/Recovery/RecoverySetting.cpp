#include "RecoverySetting.h"

#include "UserDefaults.h"

const QString& RecoverySetting::key() {
    static const QString key = QStringLiteral("RecoverySetting.keepsUnsavedChanges");
    return key;
}

bool RecoverySetting::isOn(const UserDefaults& defaults) {
    return defaults.boolForKey(key()).value_or(true);
}

void RecoverySetting::setOn(UserDefaults& defaults, bool isOn) {
    defaults.setBool(key(), isOn);
}
