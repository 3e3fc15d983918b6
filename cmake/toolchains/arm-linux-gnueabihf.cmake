# 32-bit ARM with hardware floating point (Debian's armhf: ARMv7-A, Thumb-2,
# VFPv3-D16), run under qemu-arm.
set(CMAKE_SYSTEM_PROCESSOR arm)
set(VEKTKK_CROSS_TRIPLET arm-linux-gnueabihf)
set(VEKTKK_QEMU qemu-arm)
include(${CMAKE_CURRENT_LIST_DIR}/DebianCross.cmake)
