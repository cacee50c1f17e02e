"""The parts of bench/compare and bench/drift."""
