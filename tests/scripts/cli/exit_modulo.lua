-- A process status has eight bits.
-- expect exit: 7
os.exit(256 + 7)
