/* A program that ends while its threads work: the libraries are closed under threads that have
 * just begun, of which each notes at its first decode that its end is to be watched. */
#include <pthread.h>
#include <stdio.h>
#include <stdlib.h>

#include "sdpline/sipcore.h"

enum { THREADS = 4, BLOCKS = 200 };

static pthread_barrier_t begun;

static void *takeOne(void *unused) {
    SDPMemCp *block = NULL;
    (void)unused;
    if (SipMmCreateBufMem(512, 512, &block) != 0 || SipMmReleaseBufMem(&block) != 0) {
        abort();
    }
    return NULL;
}

static void *work(void *unused) {
    (void)unused;
    pthread_barrier_wait(&begun);
    for (;;) {
        pthread_t thread;
        if (pthread_create(&thread, NULL, takeOne, NULL) == 0) {
            pthread_join(thread, NULL);
        }
    }
    return NULL;
}

int main(void) {
    pthread_barrier_init(&begun, NULL, THREADS + 1);
    for (int i = 0; i < THREADS; ++i) {
        pthread_t thread;
        if (pthread_create(&thread, NULL, work, NULL) != 0) {
            return 1;
        }
    }
    pthread_barrier_wait(&begun);
    for (int i = 0; i < BLOCKS; ++i) {
        takeOne(NULL);
    }
    return 0;
}
