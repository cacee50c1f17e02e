-- There are no exponents: the letter starts a new statement.
-- expect error 4:1: expected function call
x = 1e5
