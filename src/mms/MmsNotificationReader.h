// Reads the notifications and delivery reports of an MMS centre that arrive as WAP pushes.
#pragma once
#include "sms/MmsNotificationDecoder.h"

// For every store; it has no state.
MmsNotificationDecoder& MmsNotifications();
