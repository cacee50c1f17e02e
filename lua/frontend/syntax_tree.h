#pragma once

#include <array>
#include <bit>
#include <cstdint>
#include <vector>

#include "lua/frontend/arena.h"
#include "lua/frontend/token.h"
#include "lua/value/function_handle.h"
#include "lua/value/site_table.h"
#include "lua/value/value.h"

// The tree that the parser builds and binds, the frame planner lays out and the evaluator
// walks. A chunk's nodes live in the chunk's arena and are plain data; closures keep the chunk
// alive. The tree belongs to one interpreter (its literals are that interpreter's strings) and is
// immutable once it runs, but for the lookup hints.

namespace tarvel::lua::internal {

struct Block;
struct Expr;
struct FunctionExpr;
struct LocalVariable;
struct Node;
struct ResolvedChunk;
struct Stmt;
struct VariableExpr;

// Executes a node in the frame that starts at `base`. An expression returns an owned value; a
// statement returns a completion (completion.h), which for `return e` is the returned value itself.
using NodeFunction = Value (*)(const Node* node, Value* base);
// Evaluates an expression as a condition.
using ConditionFunction = bool (*)(const Node* node, Value* base);

// A distance from a frame's base in bytes, so that generated code needs no multiplication.
using SlotOffset = std::uint32_t;

inline Value& slotAt(Value* base, SlotOffset offset) noexcept {
  return *reinterpret_cast<Value*>(reinterpret_cast<char*>(base) + offset);
}

// The most levels of nesting that a source may have: far beyond what people write, and small enough
// that a tree of this height can be walked.
constexpr std::uint16_t kDeepestNesting = 10000;

struct Node {
  explicit Node(Site nodeSite) : site(nodeSite) {}

  NodeFunction execute = nullptr;      // chosen by selectNodeFunctions
  LuaVM::Impl* interpreter = nullptr;  // whose tree this is; set along with `execute`
  Site site;                           // of a token; of which differs per node kind
};

// ---- Names --------------------------------------------------------------------------------------

// What a chunk calls one or more variables or functions.
struct Name {
  Name(StringObject* nameText, std::uint32_t textHash) : text(nameText), hash(textHash) {}

  StringObject* text;  // kept alive by the chunk
  std::uint32_t hash;
  LocalVariable* local = nullptr;  // while the chunk is read, its innermost declaration
  VariableExpr* global = nullptr;  // the global of this name, once it is mentioned
};

// One declared local name: a parameter, a loop variable, or a name of a local declaration.
struct LocalVariable {
  LocalVariable(const Name& variableName, const FunctionExpr* declaringFunction)
      : name(variableName), declaredIn(declaringFunction) {}

  const Name& name;
  const FunctionExpr* declaredIn;
  const FunctionExpr* function = nullptr;  // of `local function`, the function that it names
  LocalVariable* next = nullptr;           // of the same block, in order of declaration
  VariableExpr* mention = nullptr;         // the latest, and the function that it is in
  const FunctionExpr* mentionedIn = nullptr;
  SlotOffset offset = 0;  // of its slot in the frame, which holds it or owns its Environment
  bool arriving = false;  // a parameter or loop variable
  bool captured = false;  // a function nested in the declaring one refers to it
  bool assigned = false;  // changes after its declaration
  bool scalar = true;     // only ever holds nil, booleans and numbers, so it needs no release

  // Closures that name it share the variable itself, so it lives in an Environment. Without an
  // assignment they can as well hold its value.
  bool inEnvironment() const noexcept { return captured && assigned; }
};

// ---- Expressions --------------------------------------------------------------------------------

enum class ExprKind : std::uint8_t {
  Literal = 0,
  Variable = 1,
  Unary = 2,
  Binary = 3,
  Table = 4,
  Field = 5,
  Index = 6,
  Call = 7,
  Function = 8,
  Concat = 9,
};

// How an operand can be read in place, by the node that uses it: without a call, a reference or any
// effect (leaves.h). Written by the node's chooser.
enum class Leaf : std::uint8_t {
  None,
  Frame,     // a frame variable
  Constant,  // a literal, or a negated number
  Shared,    // a variable that this closure captured, or a global
  // `a[i]`, `a[i + 2]`, `a[i - 1]` with a frame variable i. The object is a frame variable, an
  // Element, or any other leaf that is a variable or an access to one.
  Element,
  ElementOfElement,
  ElementOfLeaf,
  ConstantElement,  // `a[1]` of a frame variable
  Field,            // `o.f` of a frame variable
  FieldOfLeaf,
  Product,   // of two frame variables
  Negation,  // `not`, which only conditions look through
};

struct Expr : Node {
  Expr(ExprKind exprKind, Site nodeSite) : Node(nodeSite), kind(exprKind) {}

  ExprKind kind : 4;
  Leaf leaf : 4 = Leaf::None;
  TokenKind op : 6 = TokenKind::EndOfFile;  // of a unary or binary operator
  // Evaluating it may run a function of the script or the host: it contains a call, or an access,
  // which may be to a property of a native object.
  bool mayRunCode : 1 = false;
  // A variable, an access path from one whose keys are peekable or run no code, or the length of
  // one.
  bool peekable : 1 = false;
  std::uint16_t height = 1;          // levels of the tree from here down; see kDeepestNesting
  ConditionFunction test = nullptr;  // the value's truthiness
  NodeFunction peek = nullptr;       // see access_objects.h; only where `peekable` allows it
};

// A value as its tag and what is beside it.
using ValueWords = std::array<std::uint64_t, 2>;
inline ValueWords wordsOf(const Value& value) noexcept { return std::bit_cast<ValueWords>(value); }

// Equal literals of a chunk may be one node.
struct LiteralExpr : Expr {
  LiteralExpr(Value literal, Site nodeSite) : Expr(ExprKind::Literal, nodeSite), value(literal) {}

  Value value;  // a string is kept alive by the chunk
};

// Where a variable is found at run time.
enum class VariableHome : std::uint8_t {
  Frame,                // a slot of the running frame
  OwnEnvironment,       // an environment that a slot of the running frame owns
  CapturedValue,        // a value that the running closure captured
  CapturedEnvironment,  // an environment that the running closure captured
  RunningFunction,      // the running closure is the variable's value
  Global,
};

// All mentions of a variable in a function, or of a global in a chunk, may be one node.
struct VariableExpr : Expr {
  VariableExpr(const Name& globalName, Site nodeSite)
      : Expr(ExprKind::Variable, nodeSite), name(&globalName) {}
  VariableExpr(LocalVariable& local, Site nodeSite)
      : Expr(ExprKind::Variable, nodeSite), variable(&local), home(VariableHome::Frame) {}

  // The local that the name is bound to; null for a global.
  LocalVariable* local() const noexcept {
    return home != VariableHome::Global ? variable : nullptr;
  }

  union {
    LocalVariable* variable;  // of a local
    const Name* name;         // Global, until its frame is planned
    Value* cell;              // Global
  };
  union {
    SlotOffset offset = 0;       // Frame, OwnEnvironment: of the variable's slot
    std::uint32_t captureIndex;  // CapturedValue, CapturedEnvironment
  };
  VariableHome home = VariableHome::Global;  // of a local, Frame until its frame is planned
};

struct UnaryExpr : Expr {
  UnaryExpr(TokenKind unaryOp, Expr* unaryOperand, Site nodeSite)
      : Expr(ExprKind::Unary, nodeSite), operand(unaryOperand) {
    op = unaryOp;  // Minus, Hash or Not
  }

  Expr* operand;
  Value constant;  // of a negated number; otherwise nil
};

// Every binary operator but `..`.
struct BinaryExpr : Expr {
  BinaryExpr(Expr* leftOperand, TokenKind binaryOp, Expr* rightOperand, Site nodeSite)
      : Expr(ExprKind::Binary, nodeSite), left(leftOperand), right(rightOperand) {
    op = binaryOp;
  }

  Expr* left;
  Expr* right;
  // Also read by a node that this one is fused into, or that tries it in place as its operand.
  SlotOffset leftOffset = 0;   // of a left operand that is a frame variable
  SlotOffset rightOffset = 0;  // likewise
  Value constant;              // of the operand that is a literal
};

// A whole chain `a .. b .. c`. The operator is right-associative, but its operands are evaluated
// left to right and turning them into text has no effects, so the chain is one node that builds its
// text once.
struct ConcatExpr : Expr {
  ConcatExpr(ArenaList<Expr*> concatOperands, Site nodeSite)
      : Expr(ExprKind::Concat, nodeSite), operands(concatOperands) {}

  ArenaList<Expr*> operands;         // two or more
  SlotOffset temporariesOffset = 0;  // one slot an operand
};

struct TableExpr : Expr {
  enum class FieldKind : std::uint8_t { Positional = 0, Named = 1, Keyed = 2 };
  struct Field {
    Field(FieldKind fieldKind, Site fieldSite, Expr* fieldValue)
        : kind(fieldKind), site(fieldSite), value(fieldValue) {}

    bool isConstant() const noexcept { return constantTag != kNoConstant; }
    Value constant() const noexcept {
      return std::bit_cast<Value>(ValueWords{constantTag, constantBits});
    }
    // Most of what long constructors list are literals: these need no nodes of their own.
    void setConstant(const Value& literal) noexcept {
      constantTag = static_cast<std::uint8_t>(literal.tag);
      constantBits = wordsOf(literal)[1];
    }

    FieldKind kind;
    std::uint8_t constantTag = kNoConstant;
    Site site;  // of the field's first token
    union {
      StringObject* name = nullptr;  // Named
      Expr* key;                     // Keyed
    };
    union {
      Expr* value;
      std::uint64_t constantBits;  // of a constant: the Value without its tag
    };

   private:
    static constexpr std::uint8_t kNoConstant = 255;
  };

  TableExpr(ArenaList<Field> tableFields, Site nodeSite)
      : Expr(ExprKind::Table, nodeSite), fields(tableFields) {}

  ArenaList<Field> fields;
  std::uint32_t positionalCount = 0;
  SlotOffset temporariesOffset = 0;  // the table under construction, then a computed key
};

struct FieldExpr : Expr {
  FieldExpr(Expr* fieldObject, StringObject* fieldName, Site nodeSite)
      : Expr(ExprKind::Field, nodeSite), object(fieldObject), name(fieldName) {
    mayRunCode = true;
  }

  Expr* object;
  StringObject* name;
  mutable std::uint32_t hint = 0;    // the table entry where the name was found last
  SlotOffset objectOffset = 0;       // of an object that is a frame variable
  SlotOffset temporariesOffset = 0;  // as a target: the value, then the object
};

struct IndexExpr : Expr {
  IndexExpr(Expr* indexObject, Expr* indexKey, Site nodeSite)
      : Expr(ExprKind::Index, nodeSite), object(indexObject), key(indexKey) {
    mayRunCode = true;
  }

  Expr* object;
  Expr* key;
  SlotOffset objectOffset = 0;       // of an object that is a frame variable
  SlotOffset keyOffset = 0;          // of a key that is a frame variable, or one with a bias
  std::int32_t elementBias = -1;     // what to add to that key, or to 0, for the array's index
  SlotOffset temporariesOffset = 0;  // the object; as a target: the value, then the object
};

struct CallExpr : Expr {
  CallExpr(Expr* calledExpr, ArenaList<Expr*> callArguments, Site nodeSite)
      : Expr(ExprKind::Call, nodeSite), callee(calledExpr), arguments(callArguments) {}
  CallExpr(Expr* receiver, StringObject* method, ArenaList<Expr*> callArguments, Site nodeSite)
      : Expr(ExprKind::Call, nodeSite),
        arguments(callArguments),
        object(receiver),
        methodName(method) {}

  Expr* callee = nullptr;  // of a plain call
  ArenaList<Expr*> arguments;
  Expr* object = nullptr;  // of a method call, and only of one
  StringObject* methodName = nullptr;
  NodeFunction executeMulti = nullptr;  // keeps all results: a value, or a ReturnSignal completion
  SlotOffset frameOffset = 0;           // the callee's slot; its frame starts behind it
  mutable std::uint32_t hint = 0;       // the table entry where the method was found last
};

// Where a closure takes one of its captures from, in the frame of the function that makes it.
struct CaptureSource {
  enum class From : std::uint8_t { Slot, Capture, RunningFunction };

  From from;
  bool isEnvironment;   // the variable's home is captured, not its value
  std::uint32_t place;  // Slot: its SlotOffset; Capture: the index among the maker's own captures
};

struct FunctionExpr : Expr {
  explicit FunctionExpr(Site nodeSite) : Expr(ExprKind::Function, nodeSite) {}

  ArenaList<Name*> parameters;  // "self" first for a method
  Block* body = nullptr;
  StringObject* name = nullptr;  // as declared ("a.b:m"), or "<anonymous>"
  ResolvedChunk* chunk = nullptr;
  std::uint32_t nesting = 0;  // levels of the tree below, statements included
  // Run-time layout.
  ArenaList<CaptureSource> captures;  // the variables of outer functions that it needs
  std::uint32_t parameterCount = 0;
  std::uint32_t frameBytes = 0;  // of the value stack that a call may use, from its callee's slot
  std::uint32_t stackBytes = 0;  // of the host's stack that the body needs up to the next call
  SlotOffset releaseEnd = 0;     // the slots up to here may own something when the body ends
  const Node* entry = nullptr;   // what a call executes
};

// ---- Statements ---------------------------------------------------------------------------------

enum class StmtKind : std::uint8_t {
  Expression = 0,
  Assignment = 1,
  FunctionDeclaration = 2,
  If = 3,
  While = 4,
  NumericFor = 5,
  GenericFor = 6,
  Return = 7,
  Break = 8,
};

struct Stmt : Node {
  Stmt(StmtKind stmtKind, Site nodeSite) : Node(nodeSite), kind(stmtKind) {}

  StmtKind kind;
};

// The statements of a body with a scope of its own.
struct Block : Node {
  Block(ArenaList<Node*> blockStatements, Site nodeSite)
      : Node(nodeSite), nodeCount(blockStatements.size), statements(blockStatements) {}

  std::uint32_t nodeCount;             // of `nodes`
  ArenaList<Node*> statements;         // each a Stmt
  LocalVariable* variables = nullptr;  // the first; those that arrive come before the others
  SlotOffset releaseOffset = 0;        // the slots from here ...
  SlotOffset releaseEnd = 0;           // ... up to here may own something when the block ends
  const Node* const* nodes = nullptr;  // what to execute, statement by statement
};

struct ExpressionStmt : Stmt {
  ExpressionStmt(CallExpr* call, Site nodeSite)
      : Stmt(StmtKind::Expression, nodeSite), expression(call) {}

  CallExpr* expression;
};

// A name, field or index target: `expression` is a VariableExpr, FieldExpr or IndexExpr.
struct AssignTarget {
  Expr* expression;
};

// Assignments and local declarations.
struct AssignmentStmt : Stmt {
  AssignmentStmt(bool local, ArenaList<AssignTarget> assignTargets, ArenaList<Expr*> assignValues,
                 Site nodeSite)
      : Stmt(StmtKind::Assignment, nodeSite),
        isLocal(local),
        targets(assignTargets),
        values(assignValues) {}

  bool isLocal;
  ArenaList<AssignTarget> targets;
  const Expr* value = nullptr;       // the only value, where there is one
  ArenaList<Expr*> values;           // may be empty for a local declaration
  SlotOffset temporariesOffset = 0;  // one slot a value
  SlotOffset targetOffset = 0;       // of a single target that is a frame variable
};

struct FunctionDeclarationStmt : Stmt {
  FunctionDeclarationStmt(bool local, AssignTarget declared, FunctionExpr* body, Site nodeSite)
      : Stmt(StmtKind::FunctionDeclaration, nodeSite),
        isLocal(local),
        target(declared),
        function(body) {}

  bool isLocal;
  AssignTarget target;
  FunctionExpr* function;
};

struct IfStmt : Stmt {
  struct Branch {
    Expr* condition;
    Block* body;
  };

  IfStmt(ArenaList<Branch> ifBranches, Block* otherwise, Site nodeSite)
      : Stmt(StmtKind::If, nodeSite), branches(ifBranches), elseBody(otherwise) {}

  ArenaList<Branch> branches;
  Block* elseBody;  // null when absent
  // As it is executed: the first branch, and what runs when its condition is false (null: nothing).
  // Further branches are an IfStmt of their own there.
  const Expr* condition = nullptr;  // of `if not x` without an else: x
  const Node* thenNode = nullptr;
  const Node* otherwiseNode = nullptr;
};

struct WhileStmt : Stmt {
  WhileStmt(Expr* whileCondition, Block* whileBody, Site nodeSite)
      : Stmt(StmtKind::While, nodeSite), condition(whileCondition), body(whileBody) {}

  Expr* condition;
  Block* body;
  const Node* bodyNode = nullptr;  // what to execute for the body
};

struct NumericForStmt : Stmt {
  NumericForStmt(Name* loopVariable, Expr* first, Expr* last, Expr* increment, Block* forBody,
                 Site nodeSite)
      : Stmt(StmtKind::NumericFor, nodeSite),
        variable(loopVariable),
        start(first),
        limit(last),
        step(increment),
        body(forBody) {}

  Name* variable;
  Expr* start;
  Expr* limit;
  Expr* step;  // null when absent
  Block* body;
  const Node* bodyNode = nullptr;  // what to execute for the body
  SlotOffset variableOffset = 0;
};

struct GenericForStmt : Stmt {
  GenericForStmt(ArenaList<Name*> loopNames, ArenaList<Expr*> iteratorExprs, Block* forBody,
                 Site nodeSite)
      : Stmt(StmtKind::GenericFor, nodeSite),
        names(loopNames),
        iterators(iteratorExprs),
        body(forBody) {}

  ArenaList<Name*> names;
  ArenaList<Expr*> iterators;
  Block* body;
  const Node* bodyNode = nullptr;  // what to execute for the body
  // The running iterator; the values of the expression list start here.
  SlotOffset iteratorOffset = 0;
  SlotOffset firstNameOffset = 0;  // the names' slots follow each other
};

struct ReturnStmt : Stmt {
  ReturnStmt(ArenaList<Expr*> returnValues, Site nodeSite)
      : Stmt(StmtKind::Return, nodeSite), values(returnValues) {}

  ArenaList<Expr*> values;
  SlotOffset temporariesOffset = 0;  // one slot a value
};

struct BreakStmt : Stmt {
  explicit BreakStmt(Site nodeSite) : Stmt(StmtKind::Break, nodeSite) {}
};

// ---- The chunk ----------------------------------------------------------------------------------

// A parsed script: owns its tree and the strings in it. Shared by the run and by every closure made
// from it.
struct ResolvedChunk final : FunctionCode {
  explicit ResolvedChunk(Heap& heap) : FunctionCode(heap), arena(heap) {}
  ~ResolvedChunk() override { close(); }

  // Keeps `text`, an owned reference, alive as long as the tree, and returns it.
  StringObject* own(StringObject* text);

  SiteRange sites;  // of its text
  Arena arena;
  FunctionExpr* main = nullptr;  // the top level as a function without parameters
  std::vector<StringObject*> strings;

 private:
  void close() noexcept override;  // gives up the tree, its strings and its sites
};

// A reference to a chunk, as the run and every closure hold one.
class ChunkReference {
 public:
  explicit ChunkReference(ResolvedChunk* owned) : chunk_(owned) {}
  ChunkReference(ChunkReference&& other) noexcept : chunk_(other.chunk_) { other.chunk_ = nullptr; }
  ChunkReference(const ChunkReference&) = delete;
  ChunkReference& operator=(const ChunkReference&) = delete;
  ~ChunkReference() {
    if (chunk_ != nullptr) chunk_->removeReference();
  }

  ResolvedChunk& operator*() const { return *chunk_; }
  ResolvedChunk* operator->() const { return chunk_; }

 private:
  ResolvedChunk* chunk_;
};

}  // namespace tarvel::lua::internal
