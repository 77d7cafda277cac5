#ifndef GPS_PRIVATE_COMMAND_SYNC_H
#define GPS_PRIVATE_COMMAND_SYNC_H

#include "QvFramework/Foundation/QvSync.h"

/**
 * Held while a command is sent to the receiver, and from the command that changes the receiver's speed until the HAL
 * has followed and has polled it: no other command is sent at a speed at which the receiver does not listen.
 *
 * The receive thread takes it when a listener makes a request in a notification, and then waits for at most one speed
 * change. So its holder must not wait for anything that needs the receive thread, such as a listener or an answer;
 * received data are handled without it. Inside it are taken a segment's lock and the HAL's locks.
 */
inline constinit const QvSync gCommandSync;

#endif
