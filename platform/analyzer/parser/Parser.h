// Makes the syntax tree of one text: a recursive-descent parser.
//
// On an error the parser reports it once, skips to a safe place (the end of the statement or
// declaration, or of the list around it), and continues; so the tree holds all that could be read.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/analyzer/lexer/Lexer.h"
#include "platform/analyzer/parser/ParserMemory.h"
#include "platform/analyzer/text/KnownFunctions.h"
#include "platform/analyzer/text/TextNames.h"
#include "platform/analyzer/tree/Arena.h"
#include "platform/analyzer/tree/Ast.h"

namespace ca {

// A syntax error at the code unit `position`.
struct SyntaxErrorRecord {
  std::uint32_t position = 0;
  std::string message;
};

class Parser final : private LexicalErrors {
 public:
  // The result of a parse; the nodes are in the arena.
  struct Result {
    const astapi::Node* root = nullptr;
    const astapi::Classdef* classdef = nullptr;
    // In the order of the text.
    std::vector<SyntaxErrorRecord> errors;
    // Whether the parse stopped because the nesting is beyond the limit; the tree then holds what
    // is before that place.
    bool isTooDeep = false;
  };

  // Whether the functions of a file without a class are closed by `end`.
  enum class FunctionStyleType { closed, open };

  // All arguments must outlive the parser. `memory` must have read the text.
  Parser(fl::ustring_view text, ParserMemory& memory, Arena& arena, const TextNames& names,
         FunctionStyleType style);

  // Skips the known functions, whose bodies `reader` reads later. Both must outlive the parser, and
  // `reader` the tree.
  void skipKnown(const KnownFunctions* known, const lf::astapi::BodyReader<astapi::CA>* reader) {
    known_ = known;
    reader_ = reader;
  }
  Result parse();
  // Parses the rest of a function of `classdef` that was skipped. `memory` must have read its part.
  void parseSkipped(const astapi::Classdef* classdef, astapi::FunctionDefinition& function);

 private:
  using NodeKind = lf::astapi::NodeKind;
  template <class T>
  using NodeList = lf::astapi::NodeList<T>;
  using Node = astapi::Node;
  using Identifier = astapi::Identifier;

  // How blanks, line ends, `end` and `:` are read between two brackets.
  enum class BracketType { plain, arguments, list };

  class Level;
  class Bracket;
  template <class T>
  class ListBuilder;

  // --- Parser.cpp: tokens, nodes, errors ---
  void advance() {
    lastEnd_ = token_.end;
    lexer_.scan(token_.end, token_);
  }
  bool is(TokenKind kind) const { return token_.kind == kind; }
  bool accept(TokenKind kind) {
    if (failed_ || !is(kind)) return false;
    advance();
    return true;
  }
  // Takes the token, or reports that `what` was expected.
  bool expect(TokenKind kind, const char* what);
  bool isSeparator() const {
    return is(TokenKind::LineEnd) || is(TokenKind::Semicolon) || is(TokenKind::Comma);
  }
  void skipSeparators() {
    while (isSeparator()) advance();
  }
  std::string describe(const Token& token) const;
  std::string textOf(const Token& token) const;
  unsigned lineOf(std::uint32_t position) const;
  void report(std::uint32_t position, std::string message);
  void sortErrors();
  void reportLexicalError(std::uint32_t position, const char* message) override;
  void reportNulCharacters();
  // Reports what was expected at the current token and skips to a safe place; until `recover` the
  // parsing functions only return.
  void fail(std::string_view expected);
  void recover() { failed_ = isTooDeep_; }
  void skipToSafePlace();
  // Takes one token without parsing it; `previous` is the kind of the token before it.
  void skipToken(TokenKind& previous);
  // The open brackets, outermost first.
  std::vector<BracketType> openBrackets() const;
  // Adds or removes a bracket if the current token is one.
  void countBracket(std::vector<BracketType>& open) const;
  void giveUp();
  // Takes the `end` of what `opening` began; `what` names it.
  void expectEnd(const Token& opening, const char* what);

  template <class T>
  T* makeNode(NodeKind kind, std::uint32_t position);
  // Sets the end of the node to the end of the last token taken.
  template <class T>
  T* finish(T* node) const;
  Identifier* makeIdentifier(const Token& token);
  Identifier* takeIdentifier();
  Identifier* takeDottedName();
  // An empty identifier, in place of a missing name.
  Identifier* makeNameless();
  Node* takeLeaf(NodeKind kind);

  // --- ParseClass.cpp: the file, the class and its blocks ---
  void parseFile(ListBuilder<Node>& elements);
  void parseBehindClass(ListBuilder<Node>& elements);
  const Node* parseClassdef();
  NodeList<Identifier> parseSuperClasses();
  void rescueHead(astapi::Classdef& classdef, const Token& head);
  void rescueSuperClasses(astapi::Classdef& classdef, std::uint32_t end);
  bool skipParentheses();
  void parseClassBody(astapi::Classdef& classdef);
  void refuse(const char* expected);
  const Node* parseBlock();
  template <class Block>
  const Node* parseBlockOf(NodeKind kind, const char* keyword,
                           const Node* (Parser::*parseMember)());
  NodeList<astapi::Attribute> parseAttributes(lf::astapi::BracketPair& brackets);
  const astapi::Attribute* parseAttribute();
  const Node* parseProperty();
  const Node* parseMethod();
  const Node* parseEvent();
  const Node* parseEnumerationMember();
  // Reports anything between a member and the separator that it needs.
  void finishMember(const char* what, bool needsSeparator);

  // --- ParseDeclarations.cpp: what properties and arguments declare ---
  template <class Declaration>
  void parseDeclarationTail(Declaration& declaration);
  const astapi::ValidationNode* parseValidation();
  void parseSize(astapi::ValidationNode& validation);
  void parseValidators(astapi::ValidationNode& validation);
  const Node* parseValidator();
  const Node* parseNameChain();
  bool isWholeNumber(const Node& number) const;
  const Node* parseArgumentDeclaration();
  NodeList<Node> parseArgumentBlocks();
  const Node* parseArgumentsBlock();
  bool isArgumentsBlock() const;

  // --- ParseFunctions.cpp ---
  const Node* parseFunction(NodeKind kind);
  // Null if the function is not known.
  const Node* skipFunction();
  // The length of a known function at the position; 0 if there is none.
  std::uint32_t findKnown(std::uint32_t position);
  void parseFunctionBody(astapi::FunctionDefinition& function);
  const Node* parseSignature();
  void parseFunctionHead(astapi::FunctionDeclaration& function);
  NodeList<Node> parseOutputs();
  const Identifier* takeFunctionName();
  NodeList<Node> parseInputs();

  // --- ParseStatements.cpp ---
  // The words that end a list of statements, besides `end`.
  enum class BodyType { plain, ifBody, caseBody, tryBody, functionBody };
  NodeList<Node> parseStatements(BodyType type);
  bool isBodyEnd(BodyType type) const;
  // Whether the current word begins the next part of the statement around the body, such as `else`.
  bool isClauseWord(BodyType type) const;
  void finishStatement(BodyType type);
  const Node* parseStatement();
  NodeList<Node> parseBody(BodyType type);
  const Node* parseStrayKeyword();
  const Node* parseCommand();
  const Node* parseExpressionOrAssignment();
  const Node* parseMultipleAssignment();
  bool parseTargets(NodeList<Node>& targets);
  void checkTargets(const Node& left);
  const Node* parseIf();
  const Node* parseFor();
  void parseForHead(astapi::ForStatement& loop);
  const Node* parseWhile();
  const Node* parseSwitch();
  const Node* parseTry();
  const Node* parseCatch();
  const Node* parseSpmd();
  const Node* parseNames(NodeKind kind);
  // `else` or `otherwise`, with its statements.
  const Node* parseListClause(NodeKind kind, BodyType type);
  astapi::ConditionalBody* parseConditionalClause(NodeKind kind, BodyType type);

  // --- ParseExpressions.cpp ---
  const Node* parseExpression();
  const Node* parseBinary(int minimumLevel);
  const Node* parseRange(const Node* start);
  bool isElementBoundary() const;
  const Node* parsePrefix();
  const Node* parsePrefixOperation();
  // `left` is the first operand.
  const Node* parsePower(const Node* left);
  const Node* parsePowerOperand();
  const Node* parseTransposes(const Node* operand);
  bool isTranspose() const;
  const Node* parseIndexed(const Node* base);
  const Node* parseApplication(NodeKind kind, const Node* base);
  const Node* parseField(const Node* base);
  const Node* parseFieldName(const Node* base);
  bool isFieldName() const;
  // Whether a blank before the token separates it from the list element before it.
  bool isApartInList() const { return inList_ && token_.blankBefore; }
  bool isSuperclassCall(const Node& base) const;
  const Node* parseSuperclassCall(const Node* base);
  NodeList<Node> parseArguments();
  const Node* parseArgument();
  const Node* parseExpressionOrColon();
  const Node* parsePrimary();
  const Node* parseNumber();
  const Node* parseLiteral();
  const Node* parseParenthesized();
  const Node* parseList();
  const Node* parseRow(TokenKind close);
  const Node* parseAt();
  const Node* parseAnonymousFunction(std::uint32_t position);
  const Node* parseFunctionHandle(std::uint32_t position);
  bool isDynamicField() const;
  const Node* parseClassQuery();
  Node* makeMissing();
  astapi::PairNode* makePair(NodeKind kind, const Node* left, const Node* right);

  Lexer lexer_;
  ParserMemory& memory_;
  Arena& arena_;
  const TextNames& names_;
  FunctionStyleType style_;
  Token token_;
  // The position just after the last token taken.
  std::uint32_t lastEnd_ = 0;
  // Whether an error was reported and the parsing functions return until `recover`.
  bool failed_ = false;
  bool isSkipping_ = false;
  bool isTooDeep_ = false;
  bool toldOfMissingEnd_ = false;
  bool inList_ = false;
  bool inFunction_ = false;
  unsigned argumentDepth_ = 0;
  unsigned depth_ = 0;
  const Bracket* innermost_ = nullptr;
  // The elements of the lists that are being parsed.
  std::vector<const Node*>& scratch_;
  const astapi::Classdef* classdef_ = nullptr;
  const KnownFunctions* known_ = nullptr;
  // The first known function after those that were skipped.
  std::size_t nextKnown_ = 0;
  const lf::astapi::BodyReader<astapi::CA>* reader_ = nullptr;
  std::vector<SyntaxErrorRecord> errors_;
};

}  // namespace ca
