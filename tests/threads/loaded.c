/* A library with state per thread, loaded by a program that runs already: usage: loaded LIBRARY.
 * The state of threads that were there before the library counts as well as that of later ones. */
#include <dlfcn.h>
#include <pthread.h>
#include <stdio.h>

#include "sdpline/sdpline.h"

static SDPResult (*decode)(const SipString *, SdpLine **);
static SDPResult (*release)(SdpLine **);
static pthread_barrier_t loaded;

static void *decodeOften(void *unused) {
    static int refused;
    static char body[] = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n";
    const SipString text = {sizeof body - 1, body};
    (void)unused;
    pthread_barrier_wait(&loaded);
    for (int i = 0; i < 1000; ++i) {
        SdpLine *line = NULL;
        if (decode(&text, &line) != 0 || release(&line) != 0) {
            return &refused;
        }
    }
    return NULL;
}

int main(int argc, char **argv) {
    pthread_t threads[2];
    void *library;
    int wrong = 0;
    if (argc != 2) {
        return 2;
    }
    pthread_barrier_init(&loaded, NULL, 2);
    pthread_create(&threads[0], NULL, decodeOften, NULL);
    library = dlopen(argv[1], RTLD_NOW | RTLD_LOCAL);
    if (library == NULL) {
        fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    *(void **)&decode = dlsym(library, "SdpLibDecodeSdp");
    *(void **)&release = dlsym(library, "SdpLibReleaseSdp");
    pthread_create(&threads[1], NULL, decodeOften, NULL);
    for (int i = 0; i < 2; ++i) {
        void *failed = NULL;
        pthread_join(threads[i], &failed);
        wrong += failed != NULL;
    }
    if (wrong != 0) {
        fprintf(stderr, "%d threads could not decode\n", wrong);
    }
    return wrong;
}
