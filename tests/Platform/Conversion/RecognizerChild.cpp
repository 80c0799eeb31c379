// The program of RecognizerProcessTest.cpp.

#include "RecognizerServer.h"

int main() {
    return RecognizerServer::run();
}
