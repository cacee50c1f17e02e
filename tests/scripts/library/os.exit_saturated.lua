-- A float beyond the 64-bit range becomes the largest integer, whose lower 32 bits are -1.
os.exit(tonumber("1e300"))
-- expect exit: 255
