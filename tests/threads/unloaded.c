/* A library that its program closes while a thread lives that has decoded: usage: unloaded LIBRARY.
 * What the thread keeps for its next decode goes when the thread ends, by code that must still be
 * there then. */
#include <dlfcn.h>
#include <pthread.h>
#include <stdio.h>

#include "sdpline/sdpline.h"

static SDPResult (*decode)(const SipString *, SdpLine **);
static SDPResult (*release)(SdpLine **);
static pthread_barrier_t decoded;
static pthread_barrier_t closed;

static void *decodeOnce(void *unused) {
    static char body[] = "v=0\r\no=- 1 1 IN IP4 192.0.2.1\r\ns=-\r\nt=0 0\r\n";
    static int refused;
    const SipString text = {sizeof body - 1, body};
    SdpLine *line = NULL;
    const int failed = decode(&text, &line) != 0 || release(&line) != 0;
    (void)unused;
    pthread_barrier_wait(&decoded);
    pthread_barrier_wait(&closed);
    return failed ? &refused : NULL;
}

int main(int argc, char **argv) {
    pthread_t thread;
    void *failed = NULL;
    void *library = argc == 2 ? dlopen(argv[1], RTLD_NOW | RTLD_LOCAL) : NULL;
    if (library == NULL) {
        fprintf(stderr, "%s\n", argc == 2 ? dlerror() : "usage: unloaded LIBRARY");
        return 1;
    }
    *(void **)&decode = dlsym(library, "SdpLibDecodeSdp");
    *(void **)&release = dlsym(library, "SdpLibReleaseSdp");
    pthread_barrier_init(&decoded, NULL, 2);
    pthread_barrier_init(&closed, NULL, 2);
    pthread_create(&thread, NULL, decodeOnce, NULL);
    pthread_barrier_wait(&decoded);
    if (dlclose(library) != 0) {
        fprintf(stderr, "%s\n", dlerror());
        return 1;
    }
    pthread_barrier_wait(&closed);
    pthread_join(thread, &failed);
    return failed != NULL;
}
