#include "NotificationCenter.h"

NotificationCenter &NotificationCenter::instance()
{
    static NotificationCenter center;
    return center;
}
