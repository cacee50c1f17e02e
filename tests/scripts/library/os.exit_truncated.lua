-- A code beyond 32 bits loses its upper half: 2^32 + 3 is 3.
os.exit(4294967299)
-- expect exit: 3
