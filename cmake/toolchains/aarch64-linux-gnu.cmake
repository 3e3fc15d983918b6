# 64-bit ARM (ARMv8-A), run under qemu-aarch64.
set(CMAKE_SYSTEM_PROCESSOR aarch64)
set(VEKTKK_CROSS_TRIPLET aarch64-linux-gnu)
set(VEKTKK_QEMU qemu-aarch64)
include(${CMAKE_CURRENT_LIST_DIR}/DebianCross.cmake)
