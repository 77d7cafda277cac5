#ifndef GPS_PRIVATE_COMMAND_SYNC_H
#define GPS_PRIVATE_COMMAND_SYNC_H

#include "QvFramework/Foundation/QvSync.h"

/**
 * Held while a command is sent to the receiver. A change of speed holds it until the HAL has the new speed and has
 * polled the receiver, so that no command is sent at the wrong speed.
 *
 * The receive thread takes it when a listener makes a request in a notification. So its holder must not wait without a
 * time limit for anything that needs the receive thread, such as a listener or an answer.
 */
inline constinit const QvSync gCommandSync;

#endif
