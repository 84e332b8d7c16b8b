// To be preloaded into the player: its wait of exactly sixty seconds becomes one of two, every other
// one stays as it is. So a test need not sit out the silence, and still sees that the player would.

#include <sys/select.h>
#include <sys/syscall.h>
#include <time.h>
#include <unistd.h>

int select(int count, fd_set* readable, fd_set* writable, fd_set* exceptional,
           struct timeval* timeout) {
  struct timespec time;
  if (timeout != NULL) {
    const int isTheSilence = timeout->tv_sec == 60 && timeout->tv_usec == 0;
    time.tv_sec = isTheSilence ? 2 : timeout->tv_sec;
    time.tv_nsec = 1000 * timeout->tv_usec;
  }
  return (int)syscall(SYS_pselect6, count, readable, writable, exceptional,
                      timeout != NULL ? &time : NULL, NULL);
}
