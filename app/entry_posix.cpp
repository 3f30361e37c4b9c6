#include "app/main.h"

int main(int argc, char** argv) {
  return trackedcam::app::Main(argc, argv);
}
