/* A device channel written in C, as a host built with another compiler would
   write it: a struct whose first member points to a table of 33 function
   pointers in the channel interface's slot order. Every call is recorded. */
#ifndef C_CHANNEL_H
#define C_CHANNEL_H

#include <stdint.h>

#define CCHAN_SLOTS 33

typedef struct CChannel CChannel;
typedef struct CChannelVtbl CChannelVtbl;

typedef struct {
    int slot;           /* which slot ran */
    uint64_t args[9];   /* its integer arguments, widened */
} CChannelCall;

struct CChannel {
    const void* const* vtbl;  /* must stay first: this is the object's vptr */
    CChannelCall calls[64];
    int callCount;
    int lockDepth;
    void* lockOwner;
    char rx[256];
    uint32_t rxLength;
    char tx[256];
    uint32_t txLength;
};

void CChannelInit(CChannel* channel);
/* The slot names, for messages. */
const char* CChannelSlotName(int slot);

#endif
